#include <programs/common/linux/RaSocket.h>
#include <programs/common/text/Failure.h>

#include <linux/sock_diag.h>
#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

using Net::Ip6Addr;

constexpr std::size_t messageSizeMax = 65536;  // an IPv6 payload has at most 65535 octets, RFC 8200 3

Ip6Addr addressOf(in6_addr const& address) { return Ip6Addr::fromBytes(address.s6_addr); }

class Options {
 public:
  Options(int socket, std::string const& device) : socket_(socket), device_(device) {}

  template <class T>
  void set(int level, int option, T const& value, char const* what) const {
    setOctets(level, option, &value, sizeof value, what);
  }
  void setOctets(int level, int option, void const* value, std::size_t size, char const* what) const {
    if (setsockopt(socket_, level, option, value, static_cast<socklen_t>(size)) == 0) return;
    throw Failure(device_ + ": " + what + ": " + std::strerror(errno));
  }

 private:
  int socket_;
  std::string const& device_;
};

void join(Options const& options, int index, char const* group) {
  ipv6_mreq request{};
  Ip6Addr(group).copyTo(request.ipv6mr_multiaddr.s6_addr);
  request.ipv6mr_interface = static_cast<unsigned>(index);
  options.set(IPPROTO_IPV6, IPV6_JOIN_GROUP, request, "cannot join a multicast group");
}

/// Lets only messages of that type in; without a type, none.
void filterFor(Options const& options, std::optional<int> messageType) {
  icmp6_filter filter;
  ICMP6_FILTER_SETBLOCKALL(&filter);
  if (messageType) ICMP6_FILTER_SETPASS(*messageType, &filter);
  options.set(IPPROTO_ICMPV6, ICMP6_FILTER, filter, "cannot set the filter");
}

/// Discards the messages received so far.
void drain(int socket) {
  while (recv(socket, nullptr, 0, MSG_TRUNC) >= 0) continue;
}

/// The addresses of a message and its ancillary data.
struct Envelope {
  Ip6Addr source;
  Ip6Addr dest;
  Fwk::U8 hopLimit = 0;
  int intfIndex = 0;
  bool fragmented = false;
};

template <class T>
T valueOf(cmsghdr& item) {
  T value;
  std::memcpy(&value, CMSG_DATA(&item), sizeof value);
  return value;
}

void readControl(msghdr& header, Envelope& envelope) {
  for (cmsghdr* item = CMSG_FIRSTHDR(&header); item; item = CMSG_NXTHDR(&header, item)) {
    if (item->cmsg_level != IPPROTO_IPV6) continue;
    if (item->cmsg_type == IPV6_HOPLIMIT) {
      envelope.hopLimit = static_cast<Fwk::U8>(valueOf<int>(*item));
    } else if (item->cmsg_type == IPV6_PKTINFO) {
      auto const info = valueOf<in6_pktinfo>(*item);
      envelope.dest = addressOf(info.ipi6_addr);
      envelope.intfIndex = static_cast<int>(info.ipi6_ifindex);
    } else if (item->cmsg_type == IPV6_RECVFRAGSIZE) {
      envelope.fragmented = true;  // present for reassembled messages only
    }
  }
}

/// recvmsg(2): the size of the message; negative: see `errno`.
ssize_t receiveMessage(int socket, std::span<Fwk::U8> buffer, Envelope& envelope) {
  sockaddr_in6 from{};
  iovec octets{buffer.data(), buffer.size()};
  // Hop limit and packet information, RFC 3542 4, with room to spare.
  alignas(cmsghdr) std::array<char, 2 * CMSG_SPACE(sizeof(int)) + CMSG_SPACE(sizeof(in6_pktinfo)) + 64> control;
  msghdr header{};
  header.msg_name = &from;
  header.msg_namelen = sizeof from;
  header.msg_iov = &octets;
  header.msg_iovlen = 1;
  header.msg_control = control.data();
  header.msg_controllen = control.size();
  ssize_t const size = recvmsg(socket, &header, 0);
  if (size < 0) return size;
  envelope.source = addressOf(from.sin6_addr);
  readControl(header, envelope);
  return size;
}

}  // namespace

RaSocket::RaSocket(NetworkInterface const& device)
    : name_(device.name),
      index_(device.index),
      socket_(::socket(AF_INET6, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_ICMPV6)),
      buffer_(messageSizeMax) {
  if (socket_.get() < 0 && (errno == EPERM || errno == EACCES))
    throw Failure("cannot listen on " + name_ + " without the right to open raw sockets (root, or CAP_NET_RAW)");
  if (socket_.get() < 0) throw Failure(std::string("cannot open a raw socket: ") + std::strerror(errno));
  if (!device.up) throw Failure(name_ + " is down; 'ip link set " + name_ + " up' brings it up");
  Options const options(socket_.get(), name_);
  // From its creation on, a raw socket receives every ICMPv6 message of the machine: block, bind, discard, then admit.
  filterFor(options, std::nullopt);
  options.setOctets(SOL_SOCKET, SO_BINDTODEVICE, name_.data(), name_.size(), "cannot bind to the interface");
  drain(socket_.get());
  options.set(IPPROTO_IPV6, IPV6_RECVHOPLIMIT, int{1}, "cannot ask for the hop limit");
  options.set(IPPROTO_IPV6, IPV6_RECVPKTINFO, int{1}, "cannot ask for the destination");
  options.set(IPPROTO_IPV6, IPV6_RECVFRAGSIZE, int{1}, "cannot ask for fragments");
  // Messages with a wrong checksum are to be reported; at this level Linux permits to switch its own check off.
  options.set(IPPROTO_RAW, IPV6_CHECKSUM, int{-1}, "cannot switch off the checksum check");
  filterFor(options, ND_ROUTER_ADVERT);
  join(options, device.index, "ff02::1");
  join(options, device.index, "ff02::2");
}

std::optional<RaSocket::Received> RaSocket::receive() {
  while (true) {
    Envelope envelope;
    ssize_t const size = receiveMessage(socket_.get(), buffer_, envelope);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) return std::nullopt;
    if (size < 0) throw Failure(name_ + ": cannot receive: " + std::strerror(errno));
    // Another processor may have queued a message while the filter was being set.
    if (size == 0 || buffer_[0] != ND_ROUTER_ADVERT || envelope.intfIndex != index_) continue;
    if (envelope.fragmented) return Received{envelope.source, {nullptr, Net::Ip6PktInfo::Reason::fragment}};
    std::span<Fwk::U8 const> const message(buffer_.data(), static_cast<std::size_t>(size));
    return Received{envelope.source,
                    Net::Ip6PktInfo::fromIcmp6Message(message, envelope.source, envelope.dest, envelope.hopLimit)};
  }
}

Fwk::U32 RaSocket::lost() const {
  std::array<Fwk::U32, SK_MEMINFO_VARS> counts{};
  socklen_t size = sizeof counts;
  if (getsockopt(socket_.get(), SOL_SOCKET, SO_MEMINFO, counts.data(), &size) != 0)
    throw Failure(name_ + ": cannot read the number of lost messages: " + std::strerror(errno));
  return counts[SK_MEMINFO_DROPS];
}

}  // namespace Tool
