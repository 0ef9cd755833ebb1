// Finds what violates the rules about arguments and results.
#ifndef AVSK_HOST_RULES_ARGUMENT_CHECKS_H
#define AVSK_HOST_RULES_ARGUMENT_CHECKS_H

#include "ArgumentTable.h"
#include "CallTable.h"
#include "Findings.h"
#include "KnownHandles.h"
#include "RowTable.h"

#include "Crossings/Crossing.h"

namespace host {

class ArgumentChecks : public crossings::Observer {
  public:
    // The handles must outlive it.
    ArgumentChecks(Findings &findings, const KnownHandles &handles);
    ~ArgumentChecks() override;
    ArgumentChecks(const ArgumentChecks &) = delete;
    ArgumentChecks &operator=(const ArgumentChecks &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    // A requirement and the argument, or field of one, that must meet it.
    struct Case {
        const crossings::Crossing &call;
        const ArgumentRow &row;
        const crossings::Value &value;
    };
    static const CallRow<ArgumentChecks> kResults[];

    void Check(const Case &one);
    void CheckText(const Case &one);
    void CheckLength(const Case &one, const Rule &rule);
    void CheckPaths(const Case &one);
    void CheckSize(const Case &one);
    void CheckNumber(const Case &one);
    void CheckPlaces(const Case &one);
    void CheckItem(const Case &one);
    void CheckIndex(const Case &one);
    void CheckFeature(const Case &one);
    void CheckRectangle(const Case &one);
    void CheckHandle(const Case &one);
    void Add(const Rule &rule, const Case &one, std::string_view name = "", std::string value = "");

    void AfterStart(const crossings::Crossing &call);
    void AfterFlightLoop(const crossings::Crossing &call);
    void AfterDrawing(const crossings::Crossing &call);
    void AfterCamera(const crossings::Crossing &call);

    Findings &mFindings;
    const KnownHandles &mHandles;
    RowTable<ArgumentRow> mRows;
    CallTable<ArgumentChecks> mResults;
};

} // namespace host

#endif
