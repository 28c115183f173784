#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <memory>
#include <span>
#include <string>

struct pcap;
struct pcap_dumper;

namespace Tool {

/// A capture file of Ethernet frames that is being written.
class CaptureWriter {
 public:
  /// Creates the file, or empties it; `-`: standard output. Links are followed. Throws `Failure` when the file cannot
  /// be written, and for a FIFO that no process reads.
  explicit CaptureWriter(std::string const& fileName);

  /// Appends a frame, with the time of now, and sees to it that it is written. Throws `Failure`.
  void add(std::span<Fwk::U8 const> frame);

 private:
  struct Close {
    void operator()(pcap* handle) const;
    void operator()(pcap_dumper* dumper) const;
  };

  std::string fileName_;
  std::unique_ptr<pcap, Close> handle_;
  std::unique_ptr<pcap_dumper, Close> dumper_;
};

}  // namespace Tool
