// The structures that contain callbacks; see Forward.h.
#include "Forward.h"
#include "Kinds.h"

#include <algorithm>

namespace crossings {
namespace {

bool Fits(const auto *given) { return given && given->structSize == static_cast<int>(sizeof *given); }

constexpr const char *FieldsOf(const AVSKCreateWindowParams & /*params*/) {
    return "structSize,left,top,right,bottom,visible,drawFunc,mouseClickFunc,keyFunc,cursorFunc,mouseWheelFunc,refcon";
}

auto ValuesOf(const AVSKCreateWindowParams &params) {
    return std::array{ValueOf(params.structSize), ValueOf(params.left),           ValueOf(params.top),
                      ValueOf(params.right),      ValueOf(params.bottom),         ValueOf(params.visible),
                      ValueOf(params.drawFunc),   ValueOf(params.mouseClickFunc), ValueOf(params.keyFunc),
                      ValueOf(params.cursorFunc), ValueOf(params.mouseWheelFunc), ValueOf(params.refcon)};
}

void ReplaceCallbacks(AVSKCreateWindowParams &params) {
    params.drawFunc = Replace(params.drawFunc, k_AVSKDrawWindow_f);
    params.mouseClickFunc = Replace(params.mouseClickFunc, k_AVSKHandleMouseClick_f);
    params.keyFunc = Replace(params.keyFunc, k_AVSKHandleKey_f);
    params.cursorFunc = Replace(params.cursorFunc, k_AVSKHandleCursor_f);
    params.mouseWheelFunc = Replace(params.mouseWheelFunc, k_AVSKHandleMouseWheel_f);
}

constexpr const char *FieldsOf(const AVSKCreateFlightLoopParams & /*params*/) {
    return "structSize,phase,callbackFunc,refcon";
}

auto ValuesOf(const AVSKCreateFlightLoopParams &params) {
    return std::array{ValueOf(params.structSize), ValueOf(params.phase), ValueOf(params.callbackFunc),
                      ValueOf(params.refcon)};
}

void ReplaceCallbacks(AVSKCreateFlightLoopParams &params) {
    params.callbackFunc = Replace(params.callbackFunc, k_AVSKFlightLoop_f);
}

} // namespace

Giver CurrentGiver() {
    const Crossing *call = Innermost();
    return AreObserved() && call ? Giver{call->from, call->dispatched} : Giver{CurrentSide(), NO_PLUGIN_ID};
}

template <class T>
Structure<T>::Structure(const T *given) : mGiven(given) {
    if (!Fits(given))
        return;
    const auto values = ValuesOf(*given);
    std::copy(values.begin(), values.end(), mValues.begin());
    mView.fields = FieldsOf(*given);
    mView.values = {mValues.data(), values.size()};
}

template <class T>
const T *Structure<T>::Replaced() const {
    if (!Fits(mGiven))
        return mGiven;
    mCopy = *mGiven;
    ReplaceCallbacks(mCopy);
    return &mCopy;
}

template <class T>
Value Structure<T>::Shown() const {
    Value value = ValueOf<const void *>(mGiven);
    if (Fits(mGiven)) {
        value.kind = Value::Kind::Structure;
        value.structure = &mView;
    }
    return value;
}

template class Structure<AVSKCreateWindowParams>;
template class Structure<AVSKCreateFlightLoopParams>;

} // namespace crossings
