// Checksum, packets and descriptors of received packets, each beside the least that the machine needs for it.

#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <RouterPlatform/Packet/IpChecksum.h>
#include <RouterPlatform/Packet/PktManager.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

namespace {

using namespace Net;

constexpr std::size_t frameSize = 1500;

std::vector<U8> patterned(std::size_t size) {
  std::vector<U8> octets(size);
  for (std::size_t i = 0; i < size; ++i) octets[i] = static_cast<U8>(i * 37 + i / 8);
  return octets;
}

void setRate(benchmark::State& state, std::size_t octets) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(octets));
}

/// The floor of a checksum: every octet is read once, in four independent chains, and nothing is made of it but a value
/// that keeps the compiler from leaving the reads out.
U64 readAll(U8 const* at, std::size_t size) {
  std::array<U64, 4> lanes{};
  for (; size >= 32; at += 32, size -= 32)
    for (std::size_t i = 0; i < 4; ++i) {
      U64 word;
      std::memcpy(&word, at + 8 * i, 8);
      lanes[i] ^= word;
    }
  U64 result = lanes[0] ^ lanes[1] ^ lanes[2] ^ lanes[3];
  for (; size > 0; ++at, --size) result ^= *at;
  return result;
}

/// The argument is where the octets begin, counted from an aligned address.
void Packet_FloorReading1500Octets(benchmark::State& state) {
  auto const shift = static_cast<std::size_t>(state.range(0));
  auto const octets = patterned(frameSize + shift);
  U8 const* data = octets.data() + shift;
  for (auto _ : state) {
    benchmark::DoNotOptimize(data);
    benchmark::DoNotOptimize(readAll(data, frameSize));
    benchmark::ClobberMemory();
  }
  setRate(state, frameSize);
}
BENCHMARK(Packet_FloorReading1500Octets)->ArgName("shift")->Arg(0)->Arg(6);

void Packet_ChecksumOf1500Octets(benchmark::State& state) {
  auto const shift = static_cast<std::size_t>(state.range(0));
  auto const octets = patterned(frameSize + shift);
  U8 const* data = octets.data() + shift;
  for (auto _ : state) {
    benchmark::DoNotOptimize(data);
    IpChecksumAccumulator sum;
    sum.add(data, frameSize);
    benchmark::DoNotOptimize(sum.result());
    benchmark::ClobberMemory();
  }
  setRate(state, frameSize);
}
BENCHMARK(Packet_ChecksumOf1500Octets)->ArgName("shift")->Arg(0)->Arg(6);

void Packet_FloorZeroing1536Octets(benchmark::State& state) {
  auto const buffer = std::make_unique<U8[]>(1536);
  for (auto _ : state) {
    std::memset(buffer.get(), 0, 1536);
    benchmark::DoNotOptimize(buffer.get());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Packet_FloorZeroing1536Octets);

void Packet_NewAndRelease(benchmark::State& state) {
  Fwk::threadSafePtrModeIs(state.range(0) != 0);
  for (auto _ : state) benchmark::DoNotOptimize(globalPktManager().newPkt().get());
  Fwk::threadSafePtrModeIs(false);
}
BENCHMARK(Packet_NewAndRelease)->ArgName("threadSafe")->Arg(0)->Arg(1);

void Packet_NewWith1536ZeroOctets(benchmark::State& state) {
  for (auto _ : state) {
    auto const pkt = globalPktManager().newPkt();
    benchmark::DoNotOptimize(pkt->reserveHeadData(1536));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Packet_NewWith1536ZeroOctets);

/// An advertisement of 190 octets in an Ethernet frame, as it is received.
std::vector<U8> receivedFrame() {
  auto frame = patterned(14 + 40 + 136);
  auto& ip6 = *reinterpret_cast<Ip6Hdr*>(frame.data() + 14);
  frame[12] = 0x86;
  frame[13] = 0xdd;
  ip6.versionIs(Ip6Hdr::version6);
  ip6.payloadLength = 136;
  ip6.nextHeader = Ip6NextHeader::icmp6;
  return frame;
}

void Packet_FloorCopyingAFrame(benchmark::State& state) {
  auto const frame = receivedFrame();
  std::vector<U8> buffer(frame.size());
  for (auto _ : state) {
    std::memcpy(buffer.data(), frame.data(), frame.size());
    benchmark::DoNotOptimize(buffer.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Packet_FloorCopyingAFrame);

void Packet_Ip6PktInfoFromAFrame(benchmark::State& state) {
  auto const frame = receivedFrame();
  if (!Ip6PktInfo::fromEthernetFrame(frame)) state.SkipWithError("the frame gives no descriptor");
  for (auto _ : state) benchmark::DoNotOptimize(Ip6PktInfo::fromEthernetFrame(frame).info.get());
}
BENCHMARK(Packet_Ip6PktInfoFromAFrame);

void Packet_Ip6PktInfoRefusesAForeignFrame(benchmark::State& state) {
  auto frame = receivedFrame();
  frame[13] = 0x00;
  for (auto _ : state) benchmark::DoNotOptimize(Ip6PktInfo::fromEthernetFrame(frame).reason);
}
BENCHMARK(Packet_Ip6PktInfoRefusesAForeignFrame);

}  // namespace
