#include "simulator/plant/Action.h"

namespace ZrSimulator {

std::string RaiseAction::nameAt(std::uint32_t index) const {
    return numbered ? alarm + '-' + std::to_string(index) : alarm;
}

}  // namespace ZrSimulator
