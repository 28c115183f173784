#include <programs/common/mirror/MirrorServer.h>

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <asio/write.hpp>

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace Tool {

using Protocol = asio::local::stream_protocol;

/// One mirror. Lives until its connection ends; then the server lets go of it.
class MirrorServer::Session : public std::enable_shared_from_this<Session> {
 public:
  Session(MirrorServer& server, Protocol::socket socket)
      : server_(server), socket_(std::move(socket)), writer_(server.source_) {}

  void start() {
    // What has changed is told from inside the change: the octets are for later, when it is complete.
    writer_.onPendingIs([this] {
      asio::post(socket_.get_executor(), [weak = weak_from_this()] {
        if (auto const self = weak.lock()) self->write();
      });
    });
    endWhenReadable();
    write();
  }

  void close() {
    writer_.onPendingIs({});
    std::error_code ignored;
    socket_.close(ignored);
  }

 private:
  static constexpr std::size_t chunkSize = 65536;

  void write() {
    if (writing_ || !socket_.is_open() || !writer_.pending()) return;
    chunk_.clear();
    writer_.drain(chunk_, chunkSize);
    writing_ = true;
    asio::async_write(socket_, asio::buffer(chunk_), [self = shared_from_this()](std::error_code error, std::size_t) {
      self->writing_ = false;
      if (error)
        self->server_.end(self);
      else
        self->write();
    });
  }

  /// A mirror sends nothing: whatever there is to read, it has gone, or is none.
  void endWhenReadable() {
    socket_.async_read_some(asio::buffer(ignored_),
                            [self = shared_from_this()](std::error_code, std::size_t) { self->server_.end(self); });
  }

  MirrorServer& server_;
  Protocol::socket socket_;
  Fwk::ChangeStream::Writer writer_;
  Fwk::OctetBuffer chunk_;
  std::array<Fwk::U8, 1> ignored_{};
  bool writing_ = false;
};

MirrorServer::MirrorServer(asio::io_context& context, SocketPath& path, std::vector<Fwk::Ptr<Fwk::Entity>> roots)
    : source_(std::move(roots)), acceptor_(context), retry_(context) {
  FileDescriptor listener = path.takeListener();
  acceptor_.assign(Protocol(), listener.release());
  accept();
}

MirrorServer::~MirrorServer() {
  for (auto const& session : sessions_) session->close();
}

std::size_t MirrorServer::sessionsThatFit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return mostSessions;
  return std::clamp<std::size_t>(limit.rlim_cur, otherDescriptors + 1, otherDescriptors + mostSessions) -
         otherDescriptors;
}

void MirrorServer::accept() {
  if (accepting_ || sessions_.size() >= sessionsMax_) return;
  accepting_ = true;
  acceptor_.async_accept([this](std::error_code error, Protocol::socket socket) {
    accepting_ = false;
    handleAccept(error, std::move(socket));
  });
}

void MirrorServer::handleAccept(std::error_code const& error, Protocol::socket socket) {
  if (error == asio::error::operation_aborted) return;
  if (error) {  // such as no file descriptor left, which will pass
    retry_.expires_after(std::chrono::seconds(1));
    return retry_.async_wait([this](std::error_code aborted) {
      if (!aborted) accept();
    });
  }
  auto const session = std::make_shared<Session>(*this, std::move(socket));
  sessions_.insert(session);
  session->start();
  accept();
}

void MirrorServer::end(std::shared_ptr<Session> const& session) {
  session->close();
  sessions_.erase(session);
  accept();
}

}  // namespace Tool
