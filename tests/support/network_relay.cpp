#include "network_relay.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace dbn::testing {

namespace {

using Clock = std::chrono::steady_clock;

// Start-up packets carry no type byte: the protocol version or one of the
// request codes follows their length.
constexpr std::uint32_t kProtocolVersion3 = 196608;

// How often an idle connection looks at the relay's flags (cuts, stop).
constexpr std::chrono::milliseconds kIdleTick{10};

std::uint32_t ReadBigEndian32(const unsigned char* bytes) {
    return (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) |
           (std::uint32_t{bytes[2]} << 8) | std::uint32_t{bytes[3]};
}

void SetNonBlocking(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
}

int ConnectUpstream(const NetworkRelay::Upstream& upstream) {
    if (!upstream.unixSocketPath.empty()) {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, upstream.unixSocketPath.c_str(),
                     sizeof(address.sun_path) - 1);
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
            ::close(fd);
            return -1;
        }
        return fd;
    }
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(upstream.tcpPort));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(fd);
        return -1;
    }
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return fd;
}

std::string QueryParameter(const std::string& uri, const std::string& name) {
    const auto query = uri.find('?');
    if (query == std::string::npos) {
        return "";
    }
    std::size_t at = query + 1;
    while (at < uri.size()) {
        const auto end = std::min(uri.find('&', at), uri.size());
        const std::string pair = uri.substr(at, end - at);
        if (pair.rfind(name + "=", 0) == 0) {
            return pair.substr(name.size() + 1);
        }
        at = end + 1;
    }
    return "";
}

}  // namespace

struct NetworkRelay::Shared {
    Upstream upstream;
    int listenFd = -1;

    std::atomic<bool> stopping{false};
    std::atomic<bool> refuse{false};
    std::atomic<long> delayMicroseconds{0};
    std::atomic<long> roundTrips{0};
    std::atomic<long> clientMessages{0};
    std::atomic<long> connections{0};
    std::atomic<bool> cutHappened{false};
    // Bumped by CutAll(); every connection closes when it sees a new value.
    std::atomic<long> cutAllGeneration{0};

    std::mutex mutex;       // guards the planned cut and the threads
    long cutAtMessage = 0;  // absolute message number, 0: none
    std::string cutText;    // empty: none
    CutPoint cutPoint = CutPoint::BeforeForwarding;
    std::string messageTypes;  // since the counts were reset
    std::string transactionStates;
    std::vector<std::thread> threads;

    // Whether message number `number` with `body` ends its connection, and
    // where. Consumes the plan.
    std::optional<CutPoint> TakeCut(long number, char type, char state, const std::string& body) {
        std::lock_guard lock(mutex);
        messageTypes += type;
        transactionStates += state;
        const bool byNumber = cutAtMessage != 0 && number >= cutAtMessage;
        const bool byText = !cutText.empty() && body.find(cutText) != std::string::npos;
        if (!byNumber && !byText) {
            return std::nullopt;
        }
        cutAtMessage = 0;
        cutText.clear();
        cutHappened = true;
        return cutPoint;
    }
};

namespace {

// One relayed connection: the program's side and the server's side.
class RelayedConnection {
public:
    RelayedConnection(NetworkRelay::Shared& shared, int client, int server)
        : shared_(shared),
          client_(client),
          server_(server),
          generation_(shared.cutAllGeneration.load()) {
        SetNonBlocking(client_);
        SetNonBlocking(server_);
    }
    ~RelayedConnection() {
        ::close(client_);
        ::close(server_);
    }
    RelayedConnection(const RelayedConnection&) = delete;
    RelayedConnection& operator=(const RelayedConnection&) = delete;

    void Run() {
        while (!shared_.stopping && shared_.cutAllGeneration == generation_) {
            pollfd fds[2] = {{client_, POLLIN, 0}, {server_, POLLIN, 0}};
            if (!toServer_.empty()) {
                fds[1].events |= POLLOUT;
            }
            if (ClientWriteDue()) {
                fds[0].events |= POLLOUT;
            }
            if (::poll(fds, 2, static_cast<int>(PollTimeout().count())) < 0 && errno != EINTR) {
                return;
            }
            if ((fds[0].revents & (POLLIN | POLLHUP | POLLERR)) && !ReadClient()) {
                return;
            }
            if ((fds[1].revents & (POLLIN | POLLHUP | POLLERR)) && !ReadServer()) {
                FlushToClient();
                return;
            }
            if (!WriteServer() || !WriteClient()) {
                return;
            }
        }
    }

private:
    struct Chunk {
        Clock::time_point due;
        std::string bytes;
        bool endsAnAnswer = false;  // the program may send again once it has this
    };

    // Follows the server's messages (a type byte and a length each) and tells
    // whether these bytes complete one after which the program may send:
    // ready-for-query, an authentication request, the start of a copy.
    bool CompletesAnAnswer(const char* bytes, std::size_t count) {
        bool completes = false;
        for (std::size_t at = 0; at < count;) {
            if (serverHeader_.size() < 5) {
                serverHeader_ += bytes[at++];
                if (serverHeader_.size() == 5) {
                    const auto* header =
                        reinterpret_cast<const unsigned char*>(serverHeader_.data());
                    serverRemaining_ = ReadBigEndian32(header + 1) - 4;
                    serverBody_.clear();
                }
            } else {
                const std::size_t take = std::min<std::size_t>(serverRemaining_, count - at);
                if (serverBody_.size() < 4) {
                    serverBody_.append(bytes + at, std::min<std::size_t>(take, 4));
                }
                at += take;
                serverRemaining_ -= take;
            }
            if (serverHeader_.size() == 5 && serverRemaining_ == 0) {
                const char type = serverHeader_[0];
                const bool authRequest =
                    type == 'R' && serverBody_.size() == 4 &&
                    ReadBigEndian32(reinterpret_cast<const unsigned char*>(serverBody_.data())) !=
                        0;
                completes = completes || type == 'Z' || type == 'G' || type == 'H' || type == 'W' ||
                            authRequest;
                if (type == 'Z' && !serverBody_.empty()) {
                    transactionState_ = serverBody_[0];
                }
                serverHeader_.clear();
            }
        }
        return completes;
    }

    std::chrono::milliseconds PollTimeout() const {
        if (toClient_.empty()) {
            return kIdleTick;
        }
        const auto wait =
            std::chrono::ceil<std::chrono::milliseconds>(toClient_.front().due - Clock::now());
        return std::clamp(wait, std::chrono::milliseconds{0}, kIdleTick);
    }

    bool ClientWriteDue() const {
        return !toClient_.empty() && toClient_.front().due <= Clock::now();
    }

    // Reads what the program sent and frames it into messages; false when the
    // connection ends here.
    bool ReadClient() {
        char buffer[65536];
        const ssize_t count = ::read(client_, buffer, sizeof(buffer));
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
            return false;
        }
        if (count < 0) {
            return true;
        }
        pending_.append(buffer, static_cast<std::size_t>(count));
        while (true) {
            const std::size_t header = startupDone_ ? 5 : 4;
            if (pending_.size() < header) {
                return true;
            }
            const auto* bytes = reinterpret_cast<const unsigned char*>(pending_.data());
            const std::uint32_t length = ReadBigEndian32(bytes + header - 4);
            const std::size_t total = header - 4 + length;
            if (length < 4 || pending_.size() < total) {
                if (length < 4) {  // not the protocol: pass it on as it is
                    toServer_ += pending_;
                    pending_.clear();
                }
                return true;
            }
            if (!startupDone_ && length >= 8 && ReadBigEndian32(bytes + 4) == kProtocolVersion3) {
                startupDone_ = true;
            }
            std::string message = pending_.substr(0, total);
            pending_.erase(0, total);
            const char type = startupDone_ && header == 5 ? message[0] : '\0';
            // The connection's end ('X') waits for nothing.
            if (answered_ && type != 'X') {
                ++shared_.roundTrips;
                answered_ = false;
            }
            const long number = ++shared_.clientMessages;
            if (const auto cut = shared_.TakeCut(number, type, transactionState_, message)) {
                if (*cut == NetworkRelay::CutPoint::BeforeForwarding) {
                    return false;
                }
                // A simple query is a whole batch; a pipeline's statement is
                // followed by the rest of its batch.
                cutAfterSync_ = type != 'Q';
                if (!cutAfterSync_) {
                    toServer_ += message;
                    FlushToServerBlocking();
                    AwaitServerAnswer();
                    return false;
                }
            }
            toServer_ += message;
            if (cutAfterSync_ && type == 'S') {
                FlushToServerBlocking();
                AwaitServerAnswer();
                return false;
            }
        }
    }

    bool ReadServer() {
        char buffer[65536];
        const ssize_t count = ::read(server_, buffer, sizeof(buffer));
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
            return false;
        }
        if (count > 0) {
            const auto delay = std::chrono::microseconds(shared_.delayMicroseconds.load());
            const bool ends = CompletesAnAnswer(buffer, static_cast<std::size_t>(count));
            toClient_.push_back({Clock::now() + delay, std::string(buffer, count), ends});
        }
        return true;
    }

    bool WriteServer() {
        while (!toServer_.empty()) {
            const ssize_t count = ::send(server_, toServer_.data(), toServer_.size(), MSG_NOSIGNAL);
            if (count < 0) {
                return errno == EAGAIN || errno == EINTR;
            }
            toServer_.erase(0, static_cast<std::size_t>(count));
        }
        return true;
    }

    // After a cut that the server should have acted on: waits until it has
    // answered (so that closing cannot discard what it has not yet read),
    // and drops the answer.
    void AwaitServerAnswer() {
        const auto deadline = Clock::now() + std::chrono::seconds(5);
        char buffer[65536];
        while (Clock::now() < deadline) {
            pollfd fd{server_, POLLIN, 0};
            if (::poll(&fd, 1, 100) < 0) {
                return;
            }
            if ((fd.revents & (POLLIN | POLLHUP | POLLERR)) == 0) {
                continue;
            }
            const ssize_t count = ::read(server_, buffer, sizeof(buffer));
            if (count <= 0 || CompletesAnAnswer(buffer, static_cast<std::size_t>(count))) {
                return;
            }
        }
    }

    void FlushToServerBlocking() {
        while (!toServer_.empty()) {
            pollfd fd{server_, POLLOUT, 0};
            if (::poll(&fd, 1, 1000) <= 0 || !WriteServer()) {
                return;
            }
        }
    }

    bool WriteClient() {
        while (ClientWriteDue()) {
            Chunk& chunk = toClient_.front();
            const ssize_t count =
                ::send(client_, chunk.bytes.data(), chunk.bytes.size(), MSG_NOSIGNAL);
            if (count < 0) {
                return errno == EAGAIN || errno == EINTR;
            }
            chunk.bytes.erase(0, static_cast<std::size_t>(count));
            if (chunk.bytes.empty()) {
                answered_ = answered_ || chunk.endsAnAnswer;
                toClient_.pop_front();
            }
        }
        return true;
    }

    // The server closed: what it said last still reaches the program.
    void FlushToClient() {
        while (!toClient_.empty()) {
            pollfd fd{client_, POLLOUT, 0};
            if (::poll(&fd, 1, static_cast<int>(PollTimeout().count())) < 0) {
                return;
            }
            if (!WriteClient()) {
                return;
            }
        }
    }

    NetworkRelay::Shared& shared_;
    int client_;
    int server_;
    long generation_;
    bool startupDone_ = false;
    bool answered_ = true;  // the first message of a connection is a round trip
    // The transaction state the server last reported ('I', 'T', 'E').
    char transactionState_ = '\0';
    // Set when a cut waits for the end of the batch it fell in.
    bool cutAfterSync_ = false;
    std::string pending_;
    std::string toServer_;
    std::deque<Chunk> toClient_;
    // The server message being read: its type and length, and what it has
    // left.
    std::string serverHeader_;
    std::string serverBody_;
    std::size_t serverRemaining_ = 0;
};

void AcceptLoop(NetworkRelay::Shared& shared) {
    while (!shared.stopping) {
        pollfd fd{shared.listenFd, POLLIN, 0};
        if (::poll(&fd, 1, static_cast<int>(kIdleTick.count())) <= 0) {
            continue;
        }
        const int client = ::accept4(shared.listenFd, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            continue;
        }
        const int on = 1;
        ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
        const int server = shared.refuse ? -1 : ConnectUpstream(shared.upstream);
        if (server < 0) {
            ::close(client);
            continue;
        }
        ++shared.connections;
        std::lock_guard lock(shared.mutex);
        shared.threads.emplace_back([&shared, client, server] {
            RelayedConnection connection(shared, client, server);
            connection.Run();
        });
    }
}

}  // namespace

NetworkRelay::NetworkRelay(Upstream upstream, int port) : shared_(std::make_shared<Shared>()) {
    shared_->upstream = std::move(upstream);
    shared_->listenFd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    socklen_t size = sizeof(address);
    if (::bind(shared_->listenFd, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::listen(shared_->listenFd, 64) != 0 ||
        ::getsockname(shared_->listenFd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        ::close(shared_->listenFd);
        throw std::runtime_error(std::string("network relay: cannot listen: ") +
                                 std::strerror(errno));
    }
    port_ = ntohs(address.sin_port);
    std::lock_guard lock(shared_->mutex);
    shared_->threads.emplace_back([shared = shared_.get()] { AcceptLoop(*shared); });
}

NetworkRelay::~NetworkRelay() {
    shared_->stopping = true;
    std::vector<std::thread> threads;
    {
        // The accept loop may still add a connection thread after this swap:
        // take the list again until it stays empty.
        std::lock_guard lock(shared_->mutex);
        threads.swap(shared_->threads);
    }
    while (!threads.empty()) {
        for (auto& thread : threads) {
            thread.join();
        }
        threads.clear();
        std::lock_guard lock(shared_->mutex);
        threads.swap(shared_->threads);
    }
    ::close(shared_->listenFd);
}

NetworkRelay::Upstream NetworkRelay::UpstreamOfUri(const std::string& uri) {
    const std::string host = QueryParameter(uri, "host");
    const std::string port = QueryParameter(uri, "port");
    if (host.empty() || host.front() != '/') {
        throw std::runtime_error("network relay: no socket folder (host=/...) in " + uri);
    }
    return Upstream{host + "/.s.PGSQL." + (port.empty() ? "5432" : port), 0};
}

std::string NetworkRelay::RelayedUri(const std::string& uri) const {
    // postgresql://USER@/DB?host=DIR&port=P&... -> postgresql://USER@127.0.0.1:PORT/DB?...
    const auto at = uri.find("@/");
    const auto query = uri.find('?');
    if (at == std::string::npos) {
        throw std::runtime_error("network relay: cannot relay " + uri);
    }
    std::string relayed =
        uri.substr(0, at + 1) + "127.0.0.1:" + std::to_string(port_) +
        uri.substr(at + 1, (query == std::string::npos ? uri.size() : query) - (at + 1)) +
        "?sslmode=disable";
    if (query != std::string::npos) {
        std::size_t from = query + 1;
        while (from < uri.size()) {
            const auto end = std::min(uri.find('&', from), uri.size());
            const std::string pair = uri.substr(from, end - from);
            if (pair.rfind("host=", 0) != 0 && pair.rfind("port=", 0) != 0 &&
                pair.rfind("sslmode=", 0) != 0) {
                relayed += "&" + pair;
            }
            from = end + 1;
        }
    }
    return relayed;
}

void NetworkRelay::SetRoundTripDelay(std::chrono::microseconds delay) {
    shared_->delayMicroseconds = static_cast<long>(delay.count());
}

long NetworkRelay::RoundTrips() const noexcept {
    return shared_->roundTrips.load();
}
long NetworkRelay::ClientMessages() const noexcept {
    return shared_->clientMessages.load();
}
long NetworkRelay::Connections() const noexcept {
    return shared_->connections.load();
}
bool NetworkRelay::CutHappened() const noexcept {
    return shared_->cutHappened.load();
}

void NetworkRelay::ResetCounts() {
    std::lock_guard lock(shared_->mutex);
    shared_->roundTrips = 0;
    shared_->clientMessages = 0;
    shared_->connections = 0;
    shared_->messageTypes.clear();
    shared_->transactionStates.clear();
}

std::string NetworkRelay::ClientMessageTypes() const {
    std::lock_guard lock(shared_->mutex);
    return shared_->messageTypes;
}

std::string NetworkRelay::ClientTransactionStates() const {
    std::lock_guard lock(shared_->mutex);
    return shared_->transactionStates;
}

void NetworkRelay::CancelCut() {
    std::lock_guard lock(shared_->mutex);
    shared_->cutAtMessage = 0;
    shared_->cutText.clear();
}

void NetworkRelay::CutAtClientMessage(long n, CutPoint point) {
    std::lock_guard lock(shared_->mutex);
    shared_->cutAtMessage = shared_->clientMessages.load() + n;
    shared_->cutPoint = point;
    shared_->cutHappened = false;
}

void NetworkRelay::CutAtClientText(std::string text, CutPoint point) {
    std::lock_guard lock(shared_->mutex);
    shared_->cutText = std::move(text);
    shared_->cutPoint = point;
    shared_->cutHappened = false;
}

void NetworkRelay::CutAll() {
    ++shared_->cutAllGeneration;
}

void NetworkRelay::RefuseNewConnections(bool refuse) {
    shared_->refuse = refuse;
}

}  // namespace dbn::testing
