// The editor on a server that goes away: behind a relay that cuts the
// connection or refuses new ones, a failed look-up is never read as a
// missing node, a failed operation leaves the form as it was, the next
// operation reconnects once, and a save cut anywhere leaves the node wholly
// old or wholly new, with a message that says which case it is.

#include "network_relay.h"
#include "session/session_support.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>
#include <optional>

namespace dbn::testing {
namespace {

const std::string kLost = "cannot be reached: the connection to it was lost.";
// A server gone: lost, or (for a connection not yet made) not running.
const std::string kGone = "\" cannot be reached: ";
const std::string kMaybe = "the save may or may not have been written: the node is read again.";

class ServerOutage : public SessionTest {
protected:
    void SetUp() override {
        DBN_REQUIRE_TEST_SERVER();
        if (!root.OnServer()) {
            GTEST_SKIP() << "runs in the server pass";
        }
        const std::string uri = root.Target().location;
        relay = std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(uri));
        ::setenv("DBN_DATABASE", relay->RelayedUri(uri).c_str(), 1);
    }

    // The server as the operator sees it: gone (every connection cut, new
    // ones refused) or back.
    void ServerDown() {
        relay->RefuseNewConnections(true);
        relay->CutAll();
    }
    void ServerBack() { relay->RefuseNewConnections(false); }

    // The boxes shown since the last call, the save question left out.
    std::vector<ShownBox> TakeBoxes() {
        std::vector<ShownBox> shown;
        for (const ShownBox& box : services.boxes) {
            if (box.title != "Confirmation") {
                shown.push_back(box);
            }
        }
        services.boxes.clear();
        return shown;
    }

    // The one box shown since the last call: an error naming the server gone.
    void ExpectOneLostConnectionError(const std::string& what) {
        const std::vector<ShownBox> shown = TakeBoxes();
        std::string all;
        for (const ShownBox& box : shown) {
            all += "\n" + box.title + ": " + box.text;
        }
        ASSERT_EQ(shown.size(), 1u) << what << all;
        EXPECT_EQ(shown[0].title, "Error") << what;
        EXPECT_NE(shown[0].text.find(kGone), std::string::npos) << what << all;
    }

    // Description and retry limit of DBN 1, stored: "Staff directory/3" is
    // the old version, "Mine/5" the new one.
    std::string StoredVersion() { return NodeColumn("NodeDescription || '/' || RetryLimit", 1, 1); }

    std::unique_ptr<NetworkRelay> relay;
};

// With the server gone, Apply tells the lost connection once: no question
// about "missing" nodes, nothing created, the edits kept. Once the server is
// back the same Apply, untouched, offers the node that is really missing and
// saves.
TEST_F(ServerOutage, ApplyWithTheServerGoneIsToldOnceAndSucceedsOnceItIsBack) {
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "txtDescription=Mine; cmbGreetingNumber=50");
        ServerDown();
        gui.cmdApply_Click();
        ExpectOneLostConnectionError("Apply");
        EXPECT_TRUE(services.confirmations.empty());
        EXPECT_EQ(gui.txtDescription.Text(), "Mine");
        EXPECT_EQ(gui.cmbGreetingNumber.Text(), "50");
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_TRUE(gui.Frame1.Enabled());

        ServerBack();
        services.confirmAnswers = {form::kConfirmYes};
        gui.cmdApply_Click();
        EXPECT_EQ(services.confirmations.size(), 1u);
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(NodeColumn("NodeDescription || '/' || GreetingNodeNumber", 1, 1), "Mine/50");
    EXPECT_EQ(Count("Node_MSG", Where(1, "NodeNumber", 50)), 1);
}

// Moving to another node with the server gone: the form stays on the node
// shown, its selector too, and the next move once it is back goes there.
TEST_F(ServerOutage, NavigationWithTheServerGoneLeavesTheFormAsItWas) {
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "txtDescription=Mine");
        services.answers = {form::kAnswerNo};
        ServerDown();
        gui.cmdNext_Click();
        ExpectOneLostConnectionError("Next");
        EXPECT_EQ(gui.nodeNumber(), 1);
        EXPECT_EQ(gui.cmbNode.ListIndex(), 0);
        EXPECT_EQ(gui.txtDescription.Text(), "Mine");
        EXPECT_TRUE(gui.cmdApply.Enabled());

        ServerBack();
        services.answers = {form::kAnswerNo};
        gui.cmdNext_Click();
        EXPECT_TRUE(TakeBoxes().empty());
        EXPECT_EQ(gui.nodeNumber(), gui.cmbNode.ItemData(1));
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(StoredVersion(), "Staff directory/3");
}

// Moving to the next node while the server goes at any point of the load:
// in its first batch, inside its second, at the second's end. The form stays
// exactly as it was, the edits and Apply included.
TEST_F(ServerOutage, ALoadCutAnywhereLeavesTheFormExactlyAsItWas) {
    long messages = 0;  // those of a Next that nothing disturbs
    Open(1, 1, [&](form::GUI& gui) {
        relay->ResetCounts();
        gui.cmdNext_Click();
        messages = relay->ClientMessages();
    });
    ASSERT_GT(messages, 2);
    for (const long cut : {1L, messages / 2, messages}) {
        SCOPED_TRACE("cut at message " + std::to_string(cut) + " of " + std::to_string(messages));
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=Mine; cmbRetryLimit=5");
            const std::string before = FormState(gui);
            services.answers = {form::kAnswerNo};
            relay->RefuseNewConnections(true);
            relay->CutAtClientMessage(cut, NetworkRelay::CutPoint::BeforeForwarding);
            gui.cmdNext_Click();
            EXPECT_TRUE(relay->CutHappened());
            ExpectOneLostConnectionError("Next");
            EXPECT_EQ(FormState(gui), before);
            ServerBack();
        });
    }
    EXPECT_EQ(StoredVersion(), "Staff directory/3");
}

// A save whose connection is cut before, during and after its commit.
TEST_F(ServerOutage, ASaveCutAnywhereLeavesTheNodeWholeAndSaysWhichCase) {
    using Cut = NetworkRelay::CutPoint;
    struct Case {
        const char* text;  // the message the cut comes at
        Cut point;
        const char* stored;  // the version then stored
        const char* told;    // what the one error box says
        const char* shown;   // the description the form shows after it
        bool dirty;          // Apply still enabled
    };
    const Case cases[] = {
        // The write never reaches the server: nothing written, edits kept.
        {"Update_DBN_Node_Part2", Cut::BeforeForwarding, "Staff directory/3", kLost.c_str(), "Mine",
         true},
        // The commit is lost on its way or its answer is: not known, so the
        // node is read again and shows what is stored.
        {"COMMIT", Cut::BeforeForwarding, "Staff directory/3", kMaybe.c_str(), "Staff directory",
         false},
        {"COMMIT", Cut::AfterForwarding, "Mine/5", kMaybe.c_str(), "Mine", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.text) +
                     (c.point == Cut::BeforeForwarding ? " before" : " after"));
        root.Exec("UPDATE Node_DBN SET NodeDescription = 'Staff directory', RetryLimit = 3" +
                  Where(1, "NodeNumber", 1));
        Open(1, 1, [&](form::GUI& gui) {
            Set(gui, "txtDescription=Mine; cmbRetryLimit=5");
            relay->CutAtClientText(c.text, c.point);
            gui.cmdApply_Click();
            EXPECT_TRUE(relay->CutHappened());
            ASSERT_EQ(services.boxes.size(), 1u);
            EXPECT_NE(services.boxes[0].text.find(c.told), std::string::npos)
                << services.boxes[0].text;
            services.boxes.clear();
            EXPECT_EQ(gui.txtDescription.Text(), c.shown);
            EXPECT_EQ(gui.cmdApply.Enabled(), c.dirty);
        });
        EXPECT_EQ(StoredVersion(), c.stored);
        EXPECT_EQ(Count("Detail_DBN_Prompts", Where(1, "NodeMasterID", 1)), 9);
    }
    // After a committed save the connection goes: the next save reconnects.
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "txtDescription=Again");
        gui.cmdApply_Click();
        relay->CutAll();
        Set(gui, "txtDescription=Mine; cmbRetryLimit=5");
        gui.cmdApply_Click();
        EXPECT_TRUE(TakeBoxes().empty());
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(StoredVersion(), "Mine/5");
}

// A host that is down: a loopback port bound but not listening, so that a
// connection to it is refused.
class DownHost {
public:
    DownHost() : fd_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(fd_, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
            ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
            port_ = ntohs(address.sin_port);
        }
    }
    ~DownHost() { ::close(fd_); }
    DownHost(const DownHost&) = delete;
    DownHost& operator=(const DownHost&) = delete;
    int Port() const noexcept { return port_; }

private:
    int fd_;
    int port_ = 0;
};

// A connection string naming two hosts. The first one down: the editor opens
// and saves on the second. Then the second goes and the first comes up: the
// next Apply connects again, once, to the first.
TEST_F(ServerOutage, SeveralHostsReachTheOneThatIsUp) {
    std::optional<DownHost> down(std::in_place);
    const int firstPort = down->Port();
    ASSERT_NE(firstPort, 0);
    const std::string second = "127.0.0.1:" + std::to_string(relay->Port());
    std::string hosts = relay->RelayedUri(root.Target().location);
    hosts.replace(hosts.find(second), second.size(),
                  "127.0.0.1:" + std::to_string(firstPort) + "," + second);
    hosts += "&target_session_attrs=read-write";
    ::setenv("DBN_DATABASE", hosts.c_str(), 1);
    std::unique_ptr<NetworkRelay> first;
    Open(1, 1, [&](form::GUI& gui) {
        Set(gui, "txtDescription=Mine");
        gui.cmdApply_Click();
        EXPECT_TRUE(TakeBoxes().empty());
        EXPECT_FALSE(gui.cmdApply.Enabled());

        ServerDown();
        down.reset();
        first = std::make_unique<NetworkRelay>(NetworkRelay::UpstreamOfUri(root.Target().location),
                                               firstPort);
        Set(gui, "cmbRetryLimit=5");
        gui.cmdApply_Click();
        EXPECT_TRUE(TakeBoxes().empty());
        EXPECT_FALSE(gui.cmdApply.Enabled());
        EXPECT_EQ(first->Connections(), 1);
    });
    EXPECT_EQ(StoredVersion(), "Mine/5");
}

}  // namespace
}  // namespace dbn::testing
