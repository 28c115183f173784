#include <programs/common/mirror/MirrorServer.h>

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <asio/write.hpp>

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace Tool {

using Protocol = asio::local::stream_protocol;

/// One mirror. Lives until its connection ends.
class MirrorServer::Session : public std::enable_shared_from_this<Session> {
 public:
  Session(MirrorServer& server, Protocol::socket socket)
      : server_(server), socket_(std::move(socket)), writer_(server.source_) {}

  void start() {
    // Runs inside a setter: the octets are drained later, when the change is complete.
    writer_.onPendingIs([this] {
      asio::post(socket_.get_executor(), [weak = weak_from_this()] {
        if (auto const self = weak.lock()) self->write();
      });
    });
    endWhenReadable();
    write();
  }

  /// For how long the mirror has left octets unread; 0 when it has read them all.
  Clock::duration silence() {
    int unread = 0;
    if (ioctl(socket_.native_handle(), SIOCOUTQ, &unread) != 0 || unread == 0) return Clock::duration::zero();
    return std::max(Clock::now() - wroteLast_, Clock::duration(1));
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
    wroteLast_ = Clock::now();
    asio::async_write(socket_, asio::buffer(chunk_), [self = shared_from_this()](std::error_code error, std::size_t) {
      self->writing_ = false;
      if (error)
        self->server_.end(self);
      else
        self->write();
    });
  }

  /// A mirror sends nothing: if there is something to read, it has ended or is no mirror.
  void endWhenReadable() {
    socket_.async_read_some(asio::buffer(ignored_),
                            [self = shared_from_this()](std::error_code, std::size_t) { self->server_.end(self); });
  }

  MirrorServer& server_;
  Protocol::socket socket_;
  Fwk::ChangeStream::Writer writer_;
  Fwk::OctetBuffer chunk_;
  std::array<Fwk::U8, 1> ignored_{};
  Clock::time_point wroteLast_;
  bool writing_ = false;
};

MirrorServer::MirrorServer(asio::io_context& context, SocketPath& path, std::vector<Fwk::Ptr<Fwk::Entity>> roots,
                           MirrorLimits const& limits)
    : source_(std::move(roots)),
      acceptor_(context),
      retry_(context),
      limits_{.sessions = sessionsThatFit(limits.sessions), .silence = limits.silence} {
  FileDescriptor listener = path.takeListener();
  acceptor_.assign(Protocol(), listener.release());
  accept();
}

MirrorServer::~MirrorServer() {
  for (auto const& session : sessions_) session->close();
}

std::size_t MirrorServer::sessionsThatFit(std::size_t wanted) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return wanted;
  return std::clamp<std::size_t>(limit.rlim_cur, otherDescriptors + 1, otherDescriptors + wanted) - otherDescriptors;
}

void MirrorServer::accept() {
  if (accepting_) return;
  accepting_ = true;
  if (sessions_.size() >= limits_.sessions)
    return acceptor_.async_wait(Protocol::acceptor::wait_read, [this](std::error_code error) {
      accepting_ = false;
      if (!error) makeRoom();
    });
  acceptor_.async_accept([this](std::error_code error, Protocol::socket socket) {
    accepting_ = false;
    handleAccept(error, std::move(socket));
  });
}

void MirrorServer::handleAccept(std::error_code const& error, Protocol::socket socket) {
  if (error == asio::error::operation_aborted) return;
  if (error) return acceptLater();  // such as no file descriptor left, which will pass
  auto const session = std::make_shared<Session>(*this, std::move(socket));
  sessions_.insert(session);
  session->start();
  accept();
}

void MirrorServer::acceptLater() {
  retry_.expires_after(std::chrono::seconds(1));
  retry_.async_wait([this](std::error_code aborted) {
    if (!aborted) accept();
  });
}

void MirrorServer::makeRoom() {
  if (sessions_.size() < limits_.sessions) return accept();
  auto const silent = std::ranges::max_element(sessions_, {}, [](auto const& session) { return session->silence(); });
  if ((*silent)->silence() > limits_.silence) return end(*silent);
  acceptLater();
}

void MirrorServer::end(std::shared_ptr<Session> session) {
  session->close();
  sessions_.erase(session);
  accept();
}

}  // namespace Tool
