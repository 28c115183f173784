#include <programs/common/frames/CaptureWriter.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/FileDescriptor.h>

#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/time.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Tool {

namespace {

constexpr int largestFrame = 65535;

[[noreturn]] void failToWrite(std::string const& fileName, std::string const& reason) {
  throw Failure(fileName + ": cannot be written: " + reason);
}

/// Opens the file for writing and empties it. A FIFO needs a reader: without one it is refused instead of waited for.
std::FILE* openToWrite(std::string const& fileName) {
  if (fileName == "-") return stdout;
  FileDescriptor file(open(fileName.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666));
  if (file.get() < 0) failToWrite(fileName, errno == ENXIO ? "nothing reads from it" : std::strerror(errno));
  fcntl(file.get(), F_SETFL, O_WRONLY);  // blocking again: a slow reader is waited for
  std::FILE* const stream = fdopen(file.get(), "wb");
  if (!stream) failToWrite(fileName, std::strerror(errno));
  file.release();
  return stream;
}

}  // namespace

void CaptureWriter::Close::operator()(pcap* handle) const { pcap_close(handle); }
void CaptureWriter::Close::operator()(pcap_dumper* dumper) const { pcap_dump_close(dumper); }

CaptureWriter::CaptureWriter(std::string const& fileName)
    : fileName_(fileName), handle_(pcap_open_dead(DLT_EN10MB, largestFrame)) {
  if (!handle_) failToWrite(fileName, "no memory");
  std::FILE* const file = openToWrite(fileName);
  dumper_.reset(pcap_dump_fopen(handle_.get(), file));
  if (dumper_) return;
  if (file != stdout) std::fclose(file);
  failToWrite(fileName, pcap_geterr(handle_.get()));
}

void CaptureWriter::add(std::span<Fwk::U8 const> frame) {
  pcap_pkthdr header{};
  gettimeofday(&header.ts, nullptr);
  header.len = header.caplen = static_cast<bpf_u_int32>(frame.size());
  pcap_dump(reinterpret_cast<u_char*>(dumper_.get()), &header, frame.data());
  if (pcap_dump_flush(dumper_.get()) != 0) failToWrite(fileName_, std::strerror(errno));
}

}  // namespace Tool
