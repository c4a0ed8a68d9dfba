// SPDX-License-Identifier: Apache-2.0
//
// ExpressionParsingContext.h - what the expression parser is in the middle of, for one parse.
//
// A stack of parse types (the top level, a function's argument list, an array index, a dataset
// argument) tells a name whether it stands where a dataset is expected; a stack of function
// calls counts the arguments of each call being parsed and remembers the function's name.
// Parse types are pushed and popped in pairs through ParseTypeGuard, which checks on
// destruction that the stack is back at the size it had before its push.
//
// Unbalanced use is a programming error, reported through WY_CHECK with the texts
// "Unbalanced push/pop paris for parseType stack!!!", "Incrementing function argument counter
// on empty stack.", "Popping function argument off empty stack." and "Trying to pop and
// emptyParseType stack!!"; the context then leaves its stacks as they are.
//
// Ownership: plain data, one per parse. Threading: one thread.
#pragma once

#include <cstddef>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"

class WYCORE_API ExpressionParsingContext {
 public:
  enum EParseType {
    kTopLevel = 0,
    kFunctionArguments = 1,
    kArrayIndex = 2,
    kDatasetArgument = 3,
  };

  // Pushes a parse type on construction and pops it on destruction.
  class WYCORE_API ParseTypeGuard {
   public:
    ParseTypeGuard(ExpressionParsingContext& context, EParseType type);
    ParseTypeGuard(const ParseTypeGuard&) = delete;
    ParseTypeGuard& operator=(const ParseTypeGuard&) = delete;
    ~ParseTypeGuard();

   private:
    ExpressionParsingContext& mContext;
    std::size_t mSizeAtPush;
  };

  ExpressionParsingContext() = default;

  void PushParseType(EParseType type) { mParseTypes.push_back(type); }
  // False (and the check) when the stack is empty.
  bool PopParseType();
  // kTopLevel when the stack is empty.
  EParseType GetCurrentParseType() const;
  std::size_t GetParseTypeDepth() const { return mParseTypes.size(); }

  // Starts the argument list of a call of `name` (argument index 0).
  void PushFunction(const AString& name);
  // Moves to the next argument of the innermost call; false (and the check) when no call is
  // being parsed.
  bool IncrementFunctionArgument();
  // Ends the innermost call; false (and the check) when none is being parsed.
  bool PopFunction();
  // The innermost call being parsed: its name (empty when none) and the index of the argument
  // being parsed (-1 when none).
  const AString& GetCurrentFunctionName() const;
  int GetCurrentArgumentIndex() const;
  std::size_t GetFunctionDepth() const { return mFunctions.size(); }

 private:
  struct Call {
    AString mName;
    int mArgument = 0;
  };

  std::vector<EParseType> mParseTypes;
  std::vector<Call> mFunctions;
};
