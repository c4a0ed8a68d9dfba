// SPDX-License-Identifier: Apache-2.0
//
// ExpressionParsingContext.cpp - the parse-type and function-call stacks of one parse.
#include "wycore/value/ExpressionParsingContext.h"

#include "wycore/core/Check.h"

ExpressionParsingContext::ParseTypeGuard::ParseTypeGuard(ExpressionParsingContext& context,
                                                         EParseType type)
    : mContext(context), mSizeAtPush(context.GetParseTypeDepth()) {
  mContext.PushParseType(type);
}

ExpressionParsingContext::ParseTypeGuard::~ParseTypeGuard() {
  mContext.PopParseType();
  if (mContext.GetParseTypeDepth() != mSizeAtPush) {
    WY_CHECK(!"Unbalanced push/pop paris for parseType stack!!!");
  }
}

bool ExpressionParsingContext::PopParseType() {
  if (mParseTypes.empty()) {
    WY_CHECK(!"Trying to pop and emptyParseType stack!!");
    return false;
  }
  mParseTypes.pop_back();
  return true;
}

ExpressionParsingContext::EParseType ExpressionParsingContext::GetCurrentParseType() const {
  return mParseTypes.empty() ? kTopLevel : mParseTypes.back();
}

void ExpressionParsingContext::PushFunction(const AString& name) {
  mFunctions.push_back(Call{name, 0});
}

bool ExpressionParsingContext::IncrementFunctionArgument() {
  if (mFunctions.empty()) {
    WY_CHECK(!"Incrementing function argument counter on empty stack.");
    return false;
  }
  ++mFunctions.back().mArgument;
  return true;
}

bool ExpressionParsingContext::PopFunction() {
  if (mFunctions.empty()) {
    WY_CHECK(!"Popping function argument off empty stack.");
    return false;
  }
  mFunctions.pop_back();
  return true;
}

const AString& ExpressionParsingContext::GetCurrentFunctionName() const {
  static const AString none;
  return mFunctions.empty() ? none : mFunctions.back().mName;
}

int ExpressionParsingContext::GetCurrentArgumentIndex() const {
  return mFunctions.empty() ? -1 : mFunctions.back().mArgument;
}
