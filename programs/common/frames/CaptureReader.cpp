#include <programs/common/frames/CaptureReader.h>
#include <programs/common/frames/FrameDescriber.h>
#include <programs/common/text/Failure.h>

#include <pcap/pcap.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Tool {

namespace {

std::FILE* openFile(std::string const& fileName) {
  if (fileName == "-") return stdin;
  if (std::FILE* const file = std::fopen(fileName.c_str(), "rbe")) return file;
  throw Failure(fileName + ": cannot be opened: " + std::strerror(errno));
}

}  // namespace

void CaptureReader::Close::operator()(pcap* handle) const { pcap_close(handle); }

CaptureReader::CaptureReader(std::string const& fileName) : fileName_(fileName == "-" ? "standard input" : fileName) {
  std::FILE* const file = openFile(fileName);
  std::array<char, PCAP_ERRBUF_SIZE> error{};
  handle_.reset(pcap_fopen_offline(file, error.data()));
  if (!handle_) {
    if (file != stdin) std::fclose(file);
    throw Failure(fileName_ + ": is no capture file that can be read: " + error.data());
  }
  int const linkType = pcap_datalink(handle_.get());
  isEthernet_ = linkType == DLT_EN10MB;
  if (isEthernet_ || linkType == DLT_RAW || linkType == DLT_IPV6) return;
  char const* const name = pcap_datalink_val_to_name(linkType);
  throw Failure(fileName_ + ": packets of link type " + (name ? name : std::to_string(linkType)) +
                "; Ethernet and raw IP can be read");
}

std::optional<CapturedPacket> CaptureReader::next() {
  pcap_pkthdr* header = nullptr;
  u_char const* octets = nullptr;
  int const result = pcap_next_ex(handle_.get(), &header, &octets);
  if (result == PCAP_ERROR_BREAK) return std::nullopt;
  ++read_;
  if (result == 1) return CapturedPacket{read_, {octets, header->caplen}};
  throw Failure(fileName_ + ": packet " + std::to_string(read_) + ": " + pcap_geterr(handle_.get()));
}

Net::Ip6PktInfo::Result CaptureReader::receive(CapturedPacket const& packet) const {
  return isEthernet_ ? Net::Ip6PktInfo::fromEthernetFrame(packet.octets)
                     : Net::Ip6PktInfo::fromIp6Packet(packet.octets);
}

FrameDescription CaptureReader::describe(CapturedPacket const& packet) const {
  return isEthernet_ ? describeEthernetFrame(packet.octets) : describeIp6Packet(packet.octets);
}

}  // namespace Tool
