#include <tools/routeradvt/CaptureFile.h>
#include <tools/routeradvt/Command.h>

#include <pcap/pcap.h>
#include <sys/time.h>

#include <cerrno>
#include <cstring>

namespace Tool {

namespace {
constexpr int largestFrame = 65535;
}

void CaptureFile::Close::operator()(pcap* handle) const { pcap_close(handle); }
void CaptureFile::Close::operator()(pcap_dumper* dumper) const { pcap_dump_close(dumper); }

CaptureFile::CaptureFile(std::string const& fileName)
    : fileName_(fileName), handle_(pcap_open_dead(DLT_EN10MB, largestFrame)) {
  if (!handle_) throw Failure(fileName + ": cannot be written: no memory");
  dumper_.reset(pcap_dump_open(handle_.get(), fileName.c_str()));
  if (!dumper_) throw Failure(std::string("cannot be written: ") + pcap_geterr(handle_.get()));
}

void CaptureFile::add(std::span<Fwk::U8 const> frame) {
  pcap_pkthdr header{};
  gettimeofday(&header.ts, nullptr);
  header.len = header.caplen = static_cast<bpf_u_int32>(frame.size());
  pcap_dump(reinterpret_cast<u_char*>(dumper_.get()), &header, frame.data());
  if (pcap_dump_flush(dumper_.get()) != 0) throw Failure(fileName_ + ": cannot be written: " + std::strerror(errno));
}

}  // namespace Tool
