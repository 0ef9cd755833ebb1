// Owns the text of the place; see Place.h.
#include "Place.h"

#include "Crossings/Line.h"

namespace host {
namespace {

crossings::Line gPlace;

} // namespace

void SetPlace(std::string_view text) {
    gPlace.Clear();
    gPlace.Add(text);
}

std::string_view Place() { return gPlace.Text(); }

} // namespace host
