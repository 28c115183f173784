#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <RouterPlatform/Nd/RaHeader.h>
#include <programs/common/frames/CaptureReader.h>
#include <programs/common/trees/RecordView.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <algorithm>
#include <ostream>

namespace Tool {

namespace {

/// What a packet turned out to be.
struct Reading {
  std::string skipped;  ///< why it is no Router Advertisement
  Fwk::Ptr<Net::Ip6PktInfo> info;
  bool checksumValid = false;
  RouterAdvt::RaPacket record;
  bool rejected = false;
};

Reading read(CaptureReader const& reader, CapturedPacket const& packet, Net::IntfId const& intfId) {
  Net::Ip6PktInfo::Result const received = reader.receive(packet);
  if (!received) return {.skipped = reasonText(received.reason), .info = {}, .record = {}};
  Fwk::U8 const type = received.info->packet()->icmp6Hdr()->type;
  if (type != Net::Icmp6Hdr::routerAdvertisement)
    return {.skipped = "ICMPv6 type " + std::to_string(type), .info = {}, .record = {}};
  Reading reading{.skipped = {}, .info = received.info, .record = {}};
  reading.checksumValid = RouterAdvt::icmp6ChecksumValid(reading.info);
  reading.record = RouterAdvt::makeRaPacketType(intfId, reading.info);
  reading.rejected = !reading.record;
  return reading;
}

constexpr char const* rejectedText = "an option has length 0";

std::string jsonLine(CapturedPacket const& packet, Reading const& reading) {
  Json line{{"packet", packet.number}};
  if (!reading.skipped.empty()) {
    line["skipped"] = reading.skipped;
    return jsonText(line);
  }
  line["checksumValid"] = reading.checksumValid;
  if (reading.rejected)
    line["rejected"] = rejectedText;
  else
    line["record"] = recordJson(Fwk::objectRef(reading.record));
  return jsonText(line);
}

/// The options as blocks; of what comes before them, only what is odd.
std::string optionsText(FrameDescription description, std::size_t optionsAt) {
  std::string text;
  auto const isBefore = [&](FrameBlock const& block) { return block.offset < optionsAt; };
  for (FrameBlock const& block : description.blocks)
    if (isBefore(block))
      for (std::string const& oddity : block.oddities) text += "  ! " + oddity + '\n';
  std::erase_if(description.blocks, isBefore);
  if (!description.blocks.empty()) text += '\n' + toText(description);
  return text;
}

std::string wordsOf(CaptureReader const& reader, CapturedPacket const& packet, Reading const& reading) {
  std::string text = "packet " + std::to_string(packet.number) + ": ";
  if (!reading.skipped.empty()) return text + "skipped: " + reading.skipped + '\n';
  text += reading.rejected ? std::string("rejected: ") + rejectedText : "Router Advertisement";
  text += std::string(", checksum ") + (reading.checksumValid ? "good" : "bad") + '\n';
  if (!reading.rejected) text += recordText(Fwk::objectRef(reading.record));
  Fwk::U64 const messageAt = reading.info->packet()->icmp6Offset();
  return text + optionsText(reader.describe(packet), messageAt + Net::RaHeader::size);
}

class ParseCommand final : public Command {
 public:
  CommandText text() const override {
    return {"parse", "read the advertisements in a capture file",
            "Shows how the router's own parser reads each Router Advertisement, then every option, and after '!' the "
            "oddities. Reads captures of Ethernet and of raw IP.\n\n"
            "  routeradvt parse capture.pcap\n"
            "  tcpdump -i eth0 -w - icmp6 | routeradvt parse -\n"
            "  routeradvt parse --json capture.pcapng | jq .record"};
  }

  void addTo(Options& options) override {
    options.argument("FILE", file_, "file", "capture file, pcap or pcapng; - is standard input");
    options.value("--intf", "NAME", intfId_, "interface that the packets count as received on; default 'capture'");
    options.flag("--json", json_, "print one JSON object per packet, each on a line");
  }

  void run(Console& console) override {
    Net::IntfId const intfId = intfId_.value_or("capture");
    CaptureReader reader(file_);
    try {
      while (auto const packet = reader.next()) print(console, reader, *packet, read(reader, *packet, intfId));
    } catch (Failure const&) {
      console.out.flush();  // what came before the damage comes before its message
      throw;
    }
  }

 private:
  void print(Console& console, CaptureReader const& reader, CapturedPacket const& packet,
             Reading const& reading) const {
    if (json_) {
      console.out << jsonLine(packet, reading) << '\n';
      return;
    }
    if (packet.number > 1) console.out << '\n';
    console.out << wordsOf(reader, packet, reading);
  }

  std::string file_;
  std::optional<Net::IntfId> intfId_;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> makeParseCommand() { return std::make_unique<ParseCommand>(); }

}  // namespace Tool
