#pragma once

#include <vector>

#include "simulator/plant/Action.h"
#include "simulator/plant/JsonField.h"

namespace ZrSimulator {

/// One action; throws FormatError. Events have to be defined in the catalog.
Action readAction(const JsonField& field, const EventCatalog& catalog);
/// An action with "after", the seconds since the step before (0 if absent).
TimelineStep readTimelineStep(const JsonField& field, const EventCatalog& catalog);
/// One action or an array of them.
std::vector<Action> readActions(const JsonField& field, const EventCatalog& catalog);

}  // namespace ZrSimulator
