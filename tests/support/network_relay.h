#pragma once

// A TCP relay on loopback between a program and a PostgreSQL server, for the
// tests and the benchmarks: it forwards every connection it accepts to the
// server's Unix socket (or TCP port), and can
// - add a round-trip time: every answer of the server reaches the program
//   that much later;
// - count the program's round trips: the times it sends after it has been
//   answered, that is after the server said it is ready for the next query
//   (or asked for a password, or started a copy); the first message of a
//   connection counts as one, its last (the end of the connection, which
//   waits for nothing) never does;
// - cut connections: all at once, or when the program's Nth message (counted
//   in protocol messages, over all connections) or a message whose text
//   contains a given string arrives, before or after forwarding it;
// - refuse new connections, as a server that is down does.
// Messages are counted by the protocol's framing (the start-up packet, then
// a type byte and a length), so counts do not depend on how the program's
// writes are split into packets.

#include <chrono>
#include <memory>
#include <string>

namespace dbn::testing {

class NetworkRelay {
public:
    // Where the relay forwards to: a Unix socket path or a TCP port on
    // 127.0.0.1.
    struct Upstream {
        std::string unixSocketPath;
        int tcpPort = 0;
    };

    // Where a connection is cut relative to the message that triggers it.
    enum class CutPoint {
        BeforeForwarding,  // the server never sees the message
        // The server gets it, and the rest of its batch (up to the client's
        // next Sync); the answer never arrives.
        AfterForwarding,
    };

    // Listens on `port` of 127.0.0.1 (0: one the system picks).
    explicit NetworkRelay(Upstream upstream, int port = 0);
    ~NetworkRelay();
    NetworkRelay(const NetworkRelay&) = delete;
    NetworkRelay& operator=(const NetworkRelay&) = delete;

    // Upstream of a libpq URI of the form
    // postgresql://USER@/DB?host=DIR&port=P (the tests' server).
    static Upstream UpstreamOfUri(const std::string& uri);
    // The same URI pointing at this relay over TCP (SSL off, so that the
    // counts do not depend on an SSL negotiation).
    std::string RelayedUri(const std::string& uri) const;

    int Port() const noexcept { return port_; }

    void SetRoundTripDelay(std::chrono::microseconds delay);

    // Counted since the relay started or since ResetCounts().
    long RoundTrips() const noexcept;
    long ClientMessages() const noexcept;
    long Connections() const noexcept;
    // The protocol type of each of those messages, in order ('\0' for a
    // connection's start-up; 'S' ends a pipeline's batch, 'Q' is a simple
    // query, 'X' a connection's end).
    std::string ClientMessageTypes() const;
    // For each of them, the transaction state the server had last reported
    // on its connection when it came: 'I' idle, 'T' in a transaction, 'E'
    // in a failed one ('\0' before the first report).
    std::string ClientTransactionStates() const;
    void ResetCounts();

    // Cuts the connection on which the program's message number n (1 = the
    // next one from now on, over all connections) arrives.
    void CutAtClientMessage(long n, CutPoint point);
    // Cuts the connection on which the next message containing text
    // arrives (for example "COMMIT").
    void CutAtClientText(std::string text, CutPoint point);
    // Drops a planned cut that has not happened.
    void CancelCut();
    // Closes every open connection now.
    void CutAll();
    // While set, new connections are accepted and closed at once.
    void RefuseNewConnections(bool refuse);
    // True once a planned cut has happened.
    bool CutHappened() const noexcept;

    struct Shared;

private:
    std::shared_ptr<Shared> shared_;
    int port_ = 0;
};

}  // namespace dbn::testing
