#include <programs/common/linux/LinkWatch.h>
#include <programs/common/text/Failure.h>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace Tool {

LinkWatch::LinkWatch(NetworkInterface const& device)
    : name_(device.name),
      index_(static_cast<unsigned>(device.index)),
      socket_(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)) {
  sockaddr_nl groups{};
  groups.nl_family = AF_NETLINK;
  groups.nl_groups = RTMGRP_LINK;
  if (socket_.get() < 0 || bind(socket_.get(), reinterpret_cast<sockaddr const*>(&groups), sizeof groups) != 0)
    throw Failure(std::string("changes of interfaces cannot be watched: ") + std::strerror(errno));
  requireDevice();  // it may have been removed before the watch began
}

void LinkWatch::check() const {
  bool changed = false;
  while (recv(socket_.get(), nullptr, 0, MSG_TRUNC) >= 0 || errno == ENOBUFS) changed = true;
  // The messages are discarded: after ENOBUFS some are missing, so the kernel is asked for the state instead.
  if (changed) requireDevice();
}

void LinkWatch::requireDevice() const {
  std::array<char, IF_NAMESIZE> name;
  if (!if_indextoname(index_, name.data())) throw Failure(name_ + " is gone");
}

}  // namespace Tool
