// Finds what violates the rules about the numbers of a host's services: places and
// sizes, and measures of texts.
#ifndef AVSK_HOST_RULES_HOST_NUMBER_CHECKS_H
#define AVSK_HOST_RULES_HOST_NUMBER_CHECKS_H

#include "CallTable.h"
#include "Findings.h"
#include "RowTable.h"

#include "Crossings/Crossing.h"

#include <array>
#include <cstdint>
#include <optional>

namespace host {

// A number that a service writes.
struct NumberRow {
    const char *function;
    const char *parameter;
    bool isDouble;
    int count;
};

class HostNumberChecks : public crossings::Observer {
  public:
    explicit HostNumberChecks(Findings &findings);
    ~HostNumberChecks() override;
    HostNumberChecks(const HostNumberChecks &) = delete;
    HostNumberChecks &operator=(const HostNumberChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    using Point = std::array<double, 3>;
    // The width of the beginning of a text.
    struct Width {
        std::uint64_t text = 0; // the hash of font and text
        int count = -1;
        double width = 0;
    };

    static const CallRow<HostNumberChecks> kBefore[];
    static const CallRow<HostNumberChecks> kAfter[];

    void BeforeMouse(const crossings::Crossing &call);
    void BeforeFont(const crossings::Crossing &call);
    void ForgetPoint(const crossings::Crossing &hook);
    void AfterTextures(const crossings::Crossing &call);
    void AfterFont(const crossings::Crossing &call);
    void AfterScreen(const crossings::Crossing &call);
    void AfterMouse(const crossings::Crossing &call);
    void AfterToWorld(const crossings::Crossing &call);
    void AfterToLocal(const crossings::Crossing &call);
    void AfterMeasure(const crossings::Crossing &call);

    void CheckPlace(const crossings::Crossing &call, int x, int y);
    void CheckNumbers(const crossings::Crossing &call);

    Findings &mFindings;
    CallTable<HostNumberChecks> mBefore;
    CallTable<HostNumberChecks> mAfter;
    RowTable<NumberRow> mNumbers;
    std::array<int, 3> mFont{};  // outputs of getFontDimensions before the call
    std::optional<Point> mLocal; // of the last localToWorld, while it can be compared
    Point mWorld{};
    std::array<Width, 64> mWidths;
};

} // namespace host

#endif
