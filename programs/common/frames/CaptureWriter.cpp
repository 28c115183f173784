#include <programs/common/frames/CaptureWriter.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/Text.h>

#include <pcap/pcap.h>
#include <sys/time.h>

#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

constexpr int largestFrame = 65535;

[[noreturn]] void failToWrite(std::string const& fileName, std::string const& reason) {
  throw Failure(printable(fileName) + ": cannot be written: " + reason);
}

/// libpcap begins this message with the name of the file.
std::string withoutFileName(std::string const& fileName, std::string const& message) {
  return message.starts_with(fileName + ": ") ? message.substr(fileName.size() + 2) : message;
}

}  // namespace

void CaptureWriter::Close::operator()(pcap* handle) const { pcap_close(handle); }
void CaptureWriter::Close::operator()(pcap_dumper* dumper) const { pcap_dump_close(dumper); }

CaptureWriter::CaptureWriter(std::string const& fileName)
    : fileName_(fileName), handle_(pcap_open_dead(DLT_EN10MB, largestFrame)) {
  if (!handle_) failToWrite(fileName, "no memory");
  dumper_.reset(pcap_dump_open(handle_.get(), fileName.c_str()));
  if (!dumper_) failToWrite(fileName, withoutFileName(fileName, pcap_geterr(handle_.get())));
}

void CaptureWriter::add(std::span<Fwk::U8 const> frame) {
  pcap_pkthdr header{};
  gettimeofday(&header.ts, nullptr);
  header.len = header.caplen = static_cast<bpf_u_int32>(frame.size());
  pcap_dump(reinterpret_cast<u_char*>(dumper_.get()), &header, frame.data());
  if (pcap_dump_flush(dumper_.get()) != 0) failToWrite(fileName_, std::strerror(errno));
}

}  // namespace Tool
