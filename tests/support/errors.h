#pragma once

#include "base/error.h"

namespace brisklet {

/// What an action fails with; "" when it succeeds.
template <class Action>
QString errorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.text();
  }
  return {};
}

}  // namespace brisklet
