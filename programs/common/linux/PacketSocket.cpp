#include <programs/common/linux/PacketSocket.h>
#include <programs/common/text/Failure.h>

#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

std::string whyNotSent(std::string const& device, std::size_t size, int error) {
  switch (error) {
    case ENETDOWN:
      return device + " is down";
    case ENXIO:
    case ENODEV:
      return device + " is gone";
    case EMSGSIZE:
      return device + ": a frame of " + std::to_string(size) + " octets is too long for its MTU; see --mtu";
    default:
      return device + ": cannot send: " + std::strerror(error);
  }
}

}  // namespace

PacketSocket::PacketSocket(NetworkInterface const& device)
    : name_(device.name), index_(device.index), socket_(::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0)) {
  if (socket_.get() < 0 && (errno == EPERM || errno == EACCES))
    throw Failure("cannot send on " + name_ + " without the right to open packet sockets (root, or CAP_NET_RAW)");
  if (socket_.get() < 0) throw Failure(std::string("cannot open a packet socket: ") + std::strerror(errno));
  if (!device.up) throw Failure(name_ + " is down; 'ip link set " + name_ + " up' brings it up");
}

void PacketSocket::send(std::span<Fwk::U8 const> frame) {
  sockaddr_ll to{};
  to.sll_family = AF_PACKET;
  to.sll_protocol = htons(ETHERTYPE_IPV6);
  to.sll_ifindex = index_;
  to.sll_halen = ETH_ALEN;
  std::memcpy(to.sll_addr, frame.data(), ETH_ALEN);
  ssize_t const sent =
      ::sendto(socket_.get(), frame.data(), frame.size(), 0, reinterpret_cast<sockaddr const*>(&to), sizeof to);
  if (sent < 0) throw Failure(whyNotSent(name_, frame.size(), errno));
}

}  // namespace Tool
