#include <tools/routeradvt/Command.h>
#include <tools/routeradvt/RaSocket.h>

#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

using Net::Ip6Addr;

constexpr std::size_t messageSizeMax = 65536;

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

/// Hop limit and destination, which come beside the message.
struct Envelope {
  Fwk::U8 hopLimit = 0;
  Ip6Addr dest;
};

Envelope envelopeOf(msghdr& header) {
  Envelope envelope;
  for (cmsghdr* item = CMSG_FIRSTHDR(&header); item; item = CMSG_NXTHDR(&header, item)) {
    if (item->cmsg_level != IPPROTO_IPV6) continue;
    if (item->cmsg_type == IPV6_HOPLIMIT) {
      int hopLimit = 0;
      std::memcpy(&hopLimit, CMSG_DATA(item), sizeof hopLimit);
      envelope.hopLimit = static_cast<Fwk::U8>(hopLimit);
    } else if (item->cmsg_type == IPV6_PKTINFO) {
      in6_pktinfo info;
      std::memcpy(&info, CMSG_DATA(item), sizeof info);
      envelope.dest = addressOf(info.ipi6_addr);
    }
  }
  return envelope;
}

}  // namespace

RaSocket::RaSocket(NetworkInterface const& device)
    : name_(device.name),
      socket_(::socket(AF_INET6, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_ICMPV6)),
      buffer_(messageSizeMax) {
  if (socket_.get() < 0 && (errno == EPERM || errno == EACCES))
    throw Failure("to listen on " + name_ + " takes the right to open raw sockets: be root, or have CAP_NET_RAW");
  if (socket_.get() < 0) throw Failure(std::string("a raw socket cannot be had: ") + std::strerror(errno));
  if (!device.up) throw Failure(name_ + " is down; 'ip link set " + name_ + " up' brings it up");
  Options const options(socket_.get(), name_);
  // First of all what keeps out other messages, then what lets these in.
  icmp6_filter filter;
  ICMP6_FILTER_SETBLOCKALL(&filter);
  ICMP6_FILTER_SETPASS(ND_ROUTER_ADVERT, &filter);
  options.set(IPPROTO_ICMPV6, ICMP6_FILTER, filter, "cannot set the filter");
  options.setOctets(SOL_SOCKET, SO_BINDTODEVICE, name_.data(), name_.size(), "cannot listen on this interface alone");
  options.set(IPPROTO_IPV6, IPV6_RECVHOPLIMIT, int{1}, "cannot ask for the hop limit");
  options.set(IPPROTO_IPV6, IPV6_RECVPKTINFO, int{1}, "cannot ask for the destination");
  // At this level Linux lets one switch off its own check: what is wrong is to be said, not to be swallowed.
  options.set(IPPROTO_RAW, IPV6_CHECKSUM, int{-1}, "cannot ask for wrong checksums");
  join(options, device.index, "ff02::1");
  join(options, device.index, "ff02::2");
}

std::optional<Net::Ip6PktInfo::Result> RaSocket::receive() {
  sockaddr_in6 from{};
  iovec octets{buffer_.data(), buffer_.size()};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int)) + CMSG_SPACE(sizeof(in6_pktinfo)) + 64> control;
  msghdr header{};
  header.msg_name = &from;
  header.msg_namelen = sizeof from;
  header.msg_iov = &octets;
  header.msg_iovlen = 1;
  header.msg_control = control.data();
  header.msg_controllen = control.size();
  ssize_t const size = recvmsg(socket_.get(), &header, 0);
  if (size < 0 && (errno == EAGAIN || errno == EINTR)) return std::nullopt;
  if (size < 0) throw Failure(name_ + ": cannot receive: " + std::strerror(errno));
  Envelope const envelope = envelopeOf(header);
  return Net::Ip6PktInfo::fromIcmp6Message({buffer_.data(), static_cast<std::size_t>(size)}, addressOf(from.sin6_addr),
                                           envelope.dest, envelope.hopLimit);
}

}  // namespace Tool
