// Finds what violates the rules about the buffers that a host's services fill.
#ifndef AVSK_HOST_RULES_HOST_TEXT_CHECKS_H
#define AVSK_HOST_RULES_HOST_TEXT_CHECKS_H

#include "CallTable.h"
#include "Findings.h"
#include "RowTable.h"

#include "Crossings/Crossing.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A buffer of fixed size that a service fills with a text.
struct TextRow {
    const char *function;
    const char *parameter;
    std::size_t size;
};

class HostTextChecks : public crossings::Observer {
  public:
    explicit HostTextChecks(Findings &findings);
    ~HostTextChecks() override;
    HostTextChecks(const HostTextChecks &) = delete;
    HostTextChecks &operator=(const HostTextChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    static constexpr std::size_t kGuard = 64;
    // An output of a call under way.
    struct Buffer {
        const crossings::Crossing *call;
        std::string_view name;
        char *begin;
        std::size_t size;
        bool isText;
        char first;        // the byte before the call
        std::size_t guard; // how many bytes behind the end were read before the call
        std::array<char, kGuard> behind;
    };

    static const CallRow<HostTextChecks> kBefore[];

    void BeforeStart(const crossings::Crossing &call);
    void BeforeTextures(const crossings::Crossing &call);

    void Watch(const crossings::Crossing &call, std::string_view name, const void *begin, std::size_t size,
               bool isText);
    void Judge(const Buffer &buffer, bool isUndisturbed);
    void JudgeText(const Buffer &buffer, std::string_view text);
    void CheckFolder(const crossings::Crossing &call, const std::string &folder);

    Findings &mFindings;
    CallTable<HostTextChecks> mBefore;
    RowTable<TextRow> mTexts;
    std::vector<Buffer> mBuffers;               // of the calls under way
    const crossings::Crossing *mLast = nullptr; // the call that began last; inner calls change memory rightly
    std::string mFolder;                        // of the start
    std::optional<std::string> mModel;          // the file name of getAircraftModel, until its path is judged
};

} // namespace host

#endif
