#pragma once

#include <RouterPlatform/Mirror/ChangeStream.h>
#include <programs/common/mirror/SocketPath.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include <memory>
#include <set>

namespace Tool {

/// Streams trees to whoever connects to a socket, each at the pace at which it reads. One that does not read holds up
/// nobody, and costs a buffer and its part of what the source keeps for all together: when that is not enough, it
/// gets a new snapshot once it reads again.
class MirrorServer {
 public:
  /// Serves while `context` runs.
  MirrorServer(asio::io_context& context, SocketPath& path, std::vector<Fwk::Ptr<Fwk::Entity>> roots);
  ~MirrorServer();

 private:
  class Session;
  // More wait in the socket's queue until others leave.
  static constexpr std::size_t mostSessions = 256;
  // Files and directories are read, too.
  static constexpr std::size_t otherDescriptors = 32;

  static std::size_t sessionsThatFit();

  void accept();
  void handleAccept(std::error_code const& error, asio::local::stream_protocol::socket socket);
  void end(std::shared_ptr<Session> const& session);

  Fwk::ChangeStream::Source source_;
  asio::local::stream_protocol::acceptor acceptor_;
  asio::steady_timer retry_;
  bool accepting_ = false;
  std::size_t const sessionsMax_ = sessionsThatFit();
  std::set<std::shared_ptr<Session>> sessions_;
};

}  // namespace Tool
