#pragma once

#include <RouterPlatform/Mirror/ChangeStream.h>
#include <programs/common/mirror/SocketPath.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <memory>
#include <set>

namespace Tool {

/// How many mirrors a server has at once, and for how long one may leave octets unread when another one waits.
struct MirrorLimits {
  std::size_t sessions = 256;  ///< fewer when the process may not have that many descriptors
  std::chrono::steady_clock::duration silence = std::chrono::seconds(10);
};

/// Streams trees to each process that connects to a socket, at the pace at which it reads. A mirror that does not read
/// holds up no other: changes for it are merged, and if too many accumulate, it receives a new snapshot. When the
/// server is full, the mirror that has been silent for the longest is ended for one that waits; without a silent one,
/// the socket's queue holds those that wait.
class MirrorServer {
 public:
  /// Serves while `context` runs.
  MirrorServer(asio::io_context& context, SocketPath& path, std::vector<Fwk::Ptr<Fwk::Entity>> roots,
               MirrorLimits const& limits = {});
  ~MirrorServer();

 private:
  class Session;
  using Clock = std::chrono::steady_clock;
  // For files and directories.
  static constexpr std::size_t otherDescriptors = 32;

  static std::size_t sessionsThatFit(std::size_t wanted);

  void accept();
  void handleAccept(std::error_code const& error, asio::local::stream_protocol::socket socket);
  void acceptLater();
  /// The server is full and another mirror waits.
  void makeRoom();
  void end(std::shared_ptr<Session> session);

  Fwk::ChangeStream::Source source_;
  asio::local::stream_protocol::acceptor acceptor_;
  asio::steady_timer retry_;
  bool accepting_ = false;
  MirrorLimits const limits_;
  std::set<std::shared_ptr<Session>> sessions_;
};

}  // namespace Tool
