// SPDX-License-Identifier: MIT
#include "vlt/package_hold.h"

#include "base/check.h"
#include "vlt/plain_truth.h"

namespace vlt {

PackageHold::PackageHold(vlt_package& slot) : base_(base_of(slot)), hold_(base_.store->mutex) {}

PackageHold::~PackageHold() {
    if constexpr (check_derived) check_store(*base_.store);
}

}  // namespace vlt
