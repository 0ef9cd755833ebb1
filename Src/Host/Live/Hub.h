// Connects the pages with the simulator.
#ifndef AVSK_HOST_LIVE_HUB_H
#define AVSK_HOST_LIVE_HUB_H

#include "Client.h"
#include "Latest.h"
#include "LiveOptions.h"
#include "SimulatorProcess.h"

#include "Watching/RoundFolders.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace host {

class Hub {
  public:
    struct Calls {
        std::function<void()> ready;                    // the simulator has started; once
        std::function<void(const SimulatorEnd &)> lost; // the simulator has ended before that
        std::function<void()> ended;                    // after End()
    };

    // The folders are for the simulator's temporary files.
    Hub(Events &events, const LiveOptions &live, RoundFolders &folders, Calls calls);

    // Throws UsageError.
    void Start() { StartSimulator(); }
    // Ends the simulator's process, at once the second time.
    void End();
    void Restart(const std::string &why);

    bool HasRoom() const;
    // Takes a page in.
    void Add(Upgrade &upgrade);

  private:
    struct Page {
        std::shared_ptr<Client> client;
        Topics open;
        Progress progress;
        std::deque<std::shared_ptr<const std::string>> direct; // what goes before all else
    };
    // A message of a page that gets an answer.
    struct Asked {
        int page;
        std::string id; // in the page, as JSON
    };

    void StartSimulator();
    void OnSimulator(const ChannelMessage &message);
    void OnSimulatorsJson(const std::string &text);
    void OnSimulatorsEnd(const SimulatorEnd &end);
    std::string OnPage(int number, const std::string &text);
    void OnPagesTopics(Page &page, const nlohmann::json &message);
    void Forward(int number, nlohmann::json &message, const std::string &text);
    std::optional<Outgoing> NextFor(Page &page) const;
    void SendTopics();
    void Tell(Page &page, const nlohmann::json &message);
    void TellAll(const nlohmann::json &message);
    void WakeAll();

    const LiveOptions &mLive;
    RoundFolders &mFolders;
    const Calls mCalls;
    SimulatorProcess mSimulator;
    Latest mLatest;
    std::map<int, Page> mPages;
    int mLastPage = 0;
    Topics mOpen;                          // of any page
    std::map<std::uint32_t, Asked> mAsked; // by the ID in the simulator
    std::uint32_t mLastAsked = 0;
    std::string mEnd;         // the message about the simulator's end; empty while it runs
    std::string mRestartsFor; // why it is being ended to be started again; empty if not
    bool mIsReady = false;
    bool mIsEnding = false;
};

} // namespace host

#endif
