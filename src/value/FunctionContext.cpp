// SPDX-License-Identifier: Apache-2.0
//
// FunctionContext.cpp - the errors of one function call, and how they are shown.
#include "wycore/value/FunctionContext.h"

#include "wycore/value/Value.h"

void FunctionContext::AddError(int code, std::vector<AString> arguments) {
  mErrors.push_back(FunctionError{code, std::move(arguments)});
}

void FunctionContext::ShowErrors() {
  for (const FunctionError& error : mErrors) {
    const auto arg = [&error](std::size_t i) -> const AString* {
      return i < error.mArguments.size() ? &error.mArguments[i] : nullptr;
    };
    Value::HandleError(error.mCode, arg(0), arg(1), arg(2));
  }
  mErrors.clear();
}
