// SPDX-License-Identifier: Apache-2.0
//
// ValueManagerInstance.h - silent access to the process's value manager inside this area.
//
// The static functions of Value fire the check "msValueManager" when no manager is built; the
// variables area itself often must only know whether there is one (a name space destroyed after
// UnInitializeValues, a variable reporting an error), so it asks here without any check.
#pragma once

class ValueManager;

namespace wycore::detail {

// The manager built by Value::InitializeValues, or null.
ValueManager* CurrentValueManager();

}  // namespace wycore::detail
