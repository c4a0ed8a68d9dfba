// SPDX-License-Identifier: Apache-2.0
//
// ExpressionASTWalker.cpp - rebuilding the tree of a postfix operation stream, and walking it.
//
// The tree is built in one pass over the stream with a stack of frames: one frame per open
// (sub-)expression (the whole expression, each function argument, each array index), each
// holding the operands that are still waiting for their operator. Every check of the layout is
// made while building, so the walk itself cannot meet a malformed tree.
#include "wycore/value/ExpressionASTWalker.h"

#include "wycore/core/Check.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ParameterType.h"

// ---- Default callbacks: nothing -------------------------------------------------------------

void IExpressionASTWalkerStrategy::OnDoubleOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnComplexOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnCircleOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnArcOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnRegionOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnDatasetOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnDoubleMatrixOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnComplexMatrixOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnStringOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnStringMatrixOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnDynamicDoubleDoubleDatasetOp(const val::ASTPosition&,
                                                                  const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnDynamicDoubleComplexDatasetOp(const val::ASTPosition&,
                                                                   const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnIntOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnCharOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnEnumOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnTextStringArrayOp(const val::ASTPosition&, const ValueBase*) {}
void IExpressionASTWalkerStrategy::OnDoubleArrayOp(const val::ASTPosition&, const ValueBase*) {}

void IExpressionASTWalkerStrategy::OnUnaryMinusOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnNotOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnEqualOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnNotEqualOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnLessOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnGreaterOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnLessEqualOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnGreaterEqualOp(const val::ASTPosition&, Operation, Operation) {
}
void IExpressionASTWalkerStrategy::OnAndOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnOrOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnPlusOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnMinusOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnMultiplyOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnDivideOp(const val::ASTPosition&, Operation, Operation) {}
void IExpressionASTWalkerStrategy::OnRaiseToPowerOp(const val::ASTPosition&, Operation, Operation) {
}

void IExpressionASTWalkerStrategy::OnArrayIndexOpStart(const val::ASTPosition&) {}
void IExpressionASTWalkerStrategy::OnArrayIndexOpEnd(const val::ASTPosition&) {}
void IExpressionASTWalkerStrategy::OnArrayDereferenceOp(const val::ASTPosition&, Operation) {}

void IExpressionASTWalkerStrategy::OnStartFunctionOp(const val::ASTPosition&, const Function*) {}
void IExpressionASTWalkerStrategy::OnStartFunctionArg(const val::ASTPosition&) {}
void IExpressionASTWalkerStrategy::OnEndFunctionArg(const val::ASTPosition&) {}
void IExpressionASTWalkerStrategy::OnEndFunctionOp(const val::ASTPosition&, const Function*) {}

// ---- The tree ------------------------------------------------------------------------------

struct ExpressionASTWalker::Node {
  Operation mOp = kNoOp;
  int mOperationIndex = -1;
  int mValueIndex = -1;
  int mFunctionIndex = -1;
  // Binary: left, right. Unary: the operand. Function: one per argument. Dereference: the
  // array, the index.
  std::vector<int> mChildren;
};

struct ExpressionASTWalker::Frame {
  enum Kind { kWhole, kArgument, kIndex };
  Kind mKind = kWhole;
  std::vector<int> mOperands;  // nodes waiting for their operator
  int mOwner = -1;             // kArgument: the function node; kIndex: the array node
  int mArgumentIndex = -1;     // kArgument
  int mIndexStart = -1;        // kIndex: the stream index of kArrayIndexStartOp
};

namespace {

enum class NodeShape { kData, kUnary, kBinary, kFunction, kDereference };

NodeShape ShapeOf(Operation op) {
  if (IsValuePushOp(op)) return NodeShape::kData;
  switch (op) {
    case kFunctionOp:
      return NodeShape::kFunction;
    case kUnaryMinusOp:
    case kNotOp:
      return NodeShape::kUnary;
    case kArrayDereferenceOp:
      return NodeShape::kDereference;
    default:
      return NodeShape::kBinary;
  }
}

}  // namespace

ExpressionASTWalker::ExpressionASTWalker(const Expression& expression)
    : ExpressionASTWalker(expression.GetOperations(), expression.GetValues(),
                          expression.GetFunctionCalls()) {}

ExpressionASTWalker::ExpressionASTWalker(const std::vector<Operation>& operations,
                                         const std::vector<ValueBase*>& values,
                                         const std::vector<FunctionCall>& functionCalls)
    : mOperations(operations), mValues(values), mFunctionCalls(functionCalls) {}

ExpressionASTWalker::~ExpressionASTWalker() = default;

bool ExpressionASTWalker::IsKindAt(std::size_t index) const {
  if (index >= mOperations.size()) return false;
  const std::int32_t kind = mOperations[index];
  return kind >= val::kNotParam && kind <= val::kDoubleArrayParam;
}

bool ExpressionASTWalker::IsOperationFollowedByTwoModifiers(Operation op) const {
  return mCursor < mOperations.size() && mOperations[mCursor] == op && IsKindAt(mCursor + 1) &&
         IsKindAt(mCursor + 2);
}

bool ExpressionASTWalker::IsOperationFollowedByOneModifier(Operation op) const {
  return mCursor < mOperations.size() && mOperations[mCursor] == op && IsKindAt(mCursor + 1);
}

bool ExpressionASTWalker::BuildTree() {
  mNodes.clear();
  mRoot = -1;
  mCursor = 0;
  const std::size_t count = mOperations.size();
  if (count == 0 || mOperations[0] != kStartOfExpressionOp) {
    WY_CHECK(!"A well formed expression must start with kStartOfExpressionOp!!");
    return false;
  }

  std::vector<Frame> frames(1);
  std::size_t nextValue = 0;
  std::size_t nextFunction = 0;
  auto addNode = [this](Operation op, std::size_t index) {
    Node node;
    node.mOp = op;
    node.mOperationIndex = static_cast<int>(index);
    mNodes.push_back(std::move(node));
    return static_cast<int>(mNodes.size()) - 1;
  };
  // Opens the frame of argument `argument` of the function node `owner`.
  auto openArgument = [&frames](int owner, int argument) {
    Frame frame;
    frame.mKind = Frame::kArgument;
    frame.mOwner = owner;
    frame.mArgumentIndex = argument;
    frames.push_back(std::move(frame));
  };

  std::size_t i = 1;
  while (i < count) {
    mCursor = i;
    if (frames.empty()) {
      WY_CHECK(!"Operations after the end of the expression!!");
      return false;
    }
    const Operation op = mOperations[i];

    if (IsValuePushOp(op)) {
      if (nextValue >= mValues.size() || mValues[nextValue] == nullptr) {
        WY_CHECK(!"Value list does not match the operation stream!!");
        return false;
      }
      const int node = addNode(op, i);
      mNodes[node].mValueIndex = static_cast<int>(nextValue++);
      frames.back().mOperands.push_back(node);
      ++i;
      continue;
    }

    switch (op) {
      case kFunctionOp: {
        if (nextFunction >= mFunctionCalls.size() ||
            mFunctionCalls[nextFunction].mOperationIndex != static_cast<int>(i)) {
          WY_CHECK(!"Function list does not match the operation stream!!");
          return false;
        }
        const FunctionCall& call = mFunctionCalls[nextFunction];
        // The arguments follow the call directly and one another without a gap.
        std::size_t expected = i + 1;
        for (const auto& [start, end] : call.mArguments) {
          if (start < 0 || static_cast<std::size_t>(start) != expected || end <= start ||
              static_cast<std::size_t>(end) >= count ||
              mOperations[static_cast<std::size_t>(start)] != kStartOfExpressionOp ||
              mOperations[static_cast<std::size_t>(end)] != kEndOfExpressionOp) {
            WY_CHECK(!"Function list does not match the operation stream!!");
            return false;
          }
          expected = static_cast<std::size_t>(end) + 1;
        }
        const int node = addNode(op, i);
        mNodes[node].mFunctionIndex = static_cast<int>(nextFunction++);
        frames.back().mOperands.push_back(node);
        if (call.mArguments.empty()) {
          ++i;
        } else {
          openArgument(node, 0);
          i += 2;  // the call and its first argument's kStartOfExpressionOp
        }
        break;
      }

      case kStartOfExpressionOp:
        // Only a function argument opens a sub-expression, and those are consumed with the
        // call (or with the end of the previous argument).
        WY_CHECK(!"SubExpressions are prohibited!!");
        return false;

      case kEndOfExpressionOp: {
        Frame& frame = frames.back();
        if (frame.mKind == Frame::kIndex) {
          WY_CHECK(!"Array index is not closed!!");
          return false;
        }
        if (frame.mOperands.size() != 1) {
          WY_CHECK(!"A sub-expression must leave exactly one operand!!");
          return false;
        }
        const int operand = frame.mOperands.back();
        if (frame.mKind == Frame::kWhole) {
          mRoot = operand;
          frames.pop_back();
          ++i;
          break;
        }
        const int owner = frame.mOwner;
        const int argument = frame.mArgumentIndex;
        const FunctionCall& call =
            mFunctionCalls[static_cast<std::size_t>(mNodes[owner].mFunctionIndex)];
        if (call.mArguments[static_cast<std::size_t>(argument)].second != static_cast<int>(i)) {
          WY_CHECK(!"Function list does not match the operation stream!!");
          return false;
        }
        mNodes[owner].mChildren.push_back(operand);
        frames.pop_back();
        if (static_cast<std::size_t>(argument) + 1 < call.mArguments.size()) {
          openArgument(owner, argument + 1);
          i += 2;  // this end and the next argument's start
        } else {
          ++i;
        }
        break;
      }

      case kUnaryMinusOp:
      case kNotOp: {
        const bool layout = op == kUnaryMinusOp
                                ? WY_CHECK(IsOperationFollowedByOneModifier(kUnaryMinusOp))
                                : WY_CHECK(IsOperationFollowedByOneModifier(kNotOp));
        if (!layout) return false;
        Frame& frame = frames.back();
        if (frame.mOperands.empty()) {
          WY_CHECK(!"Operator without its operands!!");
          return false;
        }
        const int operand = frame.mOperands.back();
        frame.mOperands.pop_back();
        const int node = addNode(op, i);
        mNodes[node].mChildren.push_back(operand);
        frames.back().mOperands.push_back(node);
        i += 2;
        break;
      }

      case kEqualOp:
      case kNotEqualOp:
      case kLessOp:
      case kGreaterOp:
      case kLessEqualOp:
      case kGreaterEqualOp:
      case kAndOp:
      case kOrOp:
      case kPlusOp:
      case kMinusOp:
      case kMultiplyOp:
      case kDivideOp:
      case kRaiseToPowerOp: {
        bool layout = true;
        std::size_t width = 1;
        switch (op) {
          case kEqualOp:
            layout = WY_CHECK(IsOperationFollowedByOneModifier(kEqualOp));
            width = 2;
            break;
          case kNotEqualOp:
            layout = WY_CHECK(IsOperationFollowedByOneModifier(kNotEqualOp));
            width = 2;
            break;
          case kPlusOp:
            layout = WY_CHECK(IsOperationFollowedByTwoModifiers(kPlusOp));
            width = 3;
            break;
          case kMinusOp:
            layout = WY_CHECK(IsOperationFollowedByTwoModifiers(kMinusOp));
            width = 3;
            break;
          case kMultiplyOp:
            layout = WY_CHECK(IsOperationFollowedByTwoModifiers(kMultiplyOp));
            width = 3;
            break;
          case kDivideOp:
            layout = WY_CHECK(IsOperationFollowedByTwoModifiers(kDivideOp));
            width = 3;
            break;
          case kRaiseToPowerOp:
            layout = WY_CHECK(IsOperationFollowedByTwoModifiers(kRaiseToPowerOp));
            width = 3;
            break;
          default:
            break;  // comparisons and logical operators carry no kind entries
        }
        if (!layout) return false;
        Frame& frame = frames.back();
        if (frame.mOperands.size() < 2) {
          WY_CHECK(!"Operator without its operands!!");
          return false;
        }
        const int right = frame.mOperands.back();
        frame.mOperands.pop_back();
        const int left = frame.mOperands.back();
        frame.mOperands.pop_back();
        const int node = addNode(op, i);
        mNodes[node].mChildren = {left, right};
        frames.back().mOperands.push_back(node);
        i += width;
        break;
      }

      case kArrayIndexStartOp: {
        // The index belongs to the array pushed last in this frame and not yet dereferenced.
        Frame& frame = frames.back();
        if (frame.mOperands.empty() || (mNodes[frame.mOperands.back()].mOp != kDoubleArrayOp &&
                                        mNodes[frame.mOperands.back()].mOp != kTextStringArrayOp)) {
          WY_CHECK(!"Array index without its array!!");
          return false;
        }
        Frame index;
        index.mKind = Frame::kIndex;
        index.mOwner = frame.mOperands.back();
        index.mIndexStart = static_cast<int>(i);
        frame.mOperands.pop_back();
        frames.push_back(std::move(index));
        ++i;
        break;
      }

      case kArrayIndexEndOp: {
        Frame& frame = frames.back();
        if (frame.mKind != Frame::kIndex || frame.mOperands.size() != 1) {
          WY_CHECK(!"Array index is not well formed!!");
          return false;
        }
        // The dereference follows its index directly.
        mCursor = i + 1;
        if (!WY_CHECK(IsOperationFollowedByTwoModifiers(kArrayDereferenceOp))) return false;
        const int array = frame.mOwner;
        const int index = frame.mOperands.back();
        frames.pop_back();
        const int node = addNode(kArrayDereferenceOp, i + 1);
        mNodes[node].mChildren = {array, index};
        frames.back().mOperands.push_back(node);
        i += 4;  // the end marker, the dereference and its two kinds
        break;
      }

      case kArrayDereferenceOp:
        WY_CHECK(!"Array dereference without its index!!");
        return false;

      case kLeftParenOp:
      case kRightParenOp:
        // Grouping markers: the grouping is already in the order of the stream.
        ++i;
        break;

      case kNoOp:
      case kDoubleOp:
      case kComplexOp:
      case kCircleOp:
      case kArcOp:
      case kRegionOp:
      case kDatasetOp:
      case kDoubleMatrixOp:
      case kComplexMatrixOp:
      case kStringOp:
      case kStringMatrixOp:
      case kDynamicDoubleDoubleDatasetOp:
      case kDynamicDoubleComplexDatasetOp:
      case kIntOp:
      case kCharOp:
      case kEnumOp:
      case kTextStringArrayOp:
      case kDoubleArrayOp:
      case kLabelOp:
      case kLeftBracketOp:
      case kRightBracketOp:
      case kCommaOp:
      default:
        WY_CHECK(!"Unknown operation!!");
        return false;
    }
  }

  if (!frames.empty()) {
    WY_CHECK(!"The operation stream ends inside an expression!!");
    return false;
  }
  if (nextValue != mValues.size()) {
    WY_CHECK(!"Value list does not match the operation stream!!");
    return false;
  }
  if (nextFunction != mFunctionCalls.size()) {
    WY_CHECK(!"Function list does not match the operation stream!!");
    return false;
  }
  return true;
}

void ExpressionASTWalker::CallNode(IExpressionASTWalkerStrategy& strategy, const Node& node,
                                   const val::ASTPosition& position) const {
  const ValueBase* value =
      node.mValueIndex >= 0 ? mValues[static_cast<std::size_t>(node.mValueIndex)] : nullptr;
  const Operation op = node.mOp;
  const Operation parent = position.mParentOperation;
  switch (op) {
    case kDoubleOp:
      strategy.OnDoubleOp(position, value);
      return;
    case kComplexOp:
      strategy.OnComplexOp(position, value);
      return;
    case kCircleOp:
      strategy.OnCircleOp(position, value);
      return;
    case kArcOp:
      strategy.OnArcOp(position, value);
      return;
    case kRegionOp:
      strategy.OnRegionOp(position, value);
      return;
    case kDatasetOp:
      strategy.OnDatasetOp(position, value);
      return;
    case kDoubleMatrixOp:
      strategy.OnDoubleMatrixOp(position, value);
      return;
    case kComplexMatrixOp:
      strategy.OnComplexMatrixOp(position, value);
      return;
    case kStringOp:
      strategy.OnStringOp(position, value);
      return;
    case kStringMatrixOp:
      strategy.OnStringMatrixOp(position, value);
      return;
    case kDynamicDoubleDoubleDatasetOp:
      strategy.OnDynamicDoubleDoubleDatasetOp(position, value);
      return;
    case kDynamicDoubleComplexDatasetOp:
      strategy.OnDynamicDoubleComplexDatasetOp(position, value);
      return;
    case kIntOp:
      strategy.OnIntOp(position, value);
      return;
    case kCharOp:
      strategy.OnCharOp(position, value);
      return;
    case kEnumOp:
      strategy.OnEnumOp(position, value);
      return;
    case kTextStringArrayOp:
      strategy.OnTextStringArrayOp(position, value);
      return;
    case kDoubleArrayOp:
      strategy.OnDoubleArrayOp(position, value);
      return;
    case kUnaryMinusOp:
      strategy.OnUnaryMinusOp(position, op, parent);
      return;
    case kNotOp:
      strategy.OnNotOp(position, op, parent);
      return;
    case kEqualOp:
      strategy.OnEqualOp(position, op, parent);
      return;
    case kNotEqualOp:
      strategy.OnNotEqualOp(position, op, parent);
      return;
    case kLessOp:
      strategy.OnLessOp(position, op, parent);
      return;
    case kGreaterOp:
      strategy.OnGreaterOp(position, op, parent);
      return;
    case kLessEqualOp:
      strategy.OnLessEqualOp(position, op, parent);
      return;
    case kGreaterEqualOp:
      strategy.OnGreaterEqualOp(position, op, parent);
      return;
    case kAndOp:
      strategy.OnAndOp(position, op, parent);
      return;
    case kOrOp:
      strategy.OnOrOp(position, op, parent);
      return;
    case kPlusOp:
      strategy.OnPlusOp(position, op, parent);
      return;
    case kMinusOp:
      strategy.OnMinusOp(position, op, parent);
      return;
    case kMultiplyOp:
      strategy.OnMultiplyOp(position, op, parent);
      return;
    case kDivideOp:
      strategy.OnDivideOp(position, op, parent);
      return;
    case kRaiseToPowerOp:
      strategy.OnRaiseToPowerOp(position, op, parent);
      return;
    case kArrayDereferenceOp:
      strategy.OnArrayDereferenceOp(position, parent);
      return;
    case kNoOp:
    case kFunctionOp:
    case kLabelOp:
    case kLeftParenOp:
    case kStartOfExpressionOp:
    case kEndOfExpressionOp:
    case kRightParenOp:
    case kLeftBracketOp:
    case kRightBracketOp:
    case kArrayIndexStartOp:
    case kArrayIndexEndOp:
    case kCommaOp:
      return;  // never a node of its own (functions are called in Visit)
  }
}

void ExpressionASTWalker::Visit(IExpressionASTWalkerStrategy& strategy) const {
  struct Item {
    int mNode;
    int mPhase;
    Operation mParent;
    int mDepth;
  };
  std::vector<Item> stack;
  stack.push_back({mRoot, 0, kStartOfExpressionOp, 0});
  while (!stack.empty()) {
    const Item item = stack.back();
    const Node& node = mNodes[static_cast<std::size_t>(item.mNode)];
    val::ASTPosition position;
    position.mOperationIndex = node.mOperationIndex;
    position.mValueIndex = node.mValueIndex;
    position.mFunctionIndex = node.mFunctionIndex;
    position.mDepth = item.mDepth;
    position.mParentOperation = item.mParent;
    const auto child = [&](std::size_t which, Operation parent) {
      stack.back().mPhase++;
      stack.push_back({node.mChildren[which], 0, parent, item.mDepth + 1});
    };

    switch (ShapeOf(node.mOp)) {
      case NodeShape::kData:
        CallNode(strategy, node, position);
        stack.pop_back();
        break;

      case NodeShape::kUnary:
        if (item.mPhase == 0) {
          child(0, node.mOp);
        } else {
          CallNode(strategy, node, position);
          stack.pop_back();
        }
        break;

      case NodeShape::kBinary:
        if (item.mPhase < 2) {
          child(static_cast<std::size_t>(item.mPhase), node.mOp);
        } else {
          CallNode(strategy, node, position);
          stack.pop_back();
        }
        break;

      case NodeShape::kDereference:
        if (item.mPhase == 0) {
          child(0, kArrayDereferenceOp);
        } else if (item.mPhase == 1) {
          strategy.OnArrayIndexOpStart(position);
          child(1, kArrayDereferenceOp);
        } else {
          strategy.OnArrayIndexOpEnd(position);
          CallNode(strategy, node, position);
          stack.pop_back();
        }
        break;

      case NodeShape::kFunction: {
        // Phases: 0 start; 2k+1 start argument k; 2k+2 end argument k; past the last: end.
        const Function* function =
            mFunctionCalls[static_cast<std::size_t>(node.mFunctionIndex)].mFunction;
        const int arguments = static_cast<int>(node.mChildren.size());
        position.mArgumentCount = arguments;
        if (item.mPhase == 0) {
          strategy.OnStartFunctionOp(position, function);
          stack.back().mPhase = 1;
        } else if (item.mPhase % 2 == 1) {
          const int argument = (item.mPhase - 1) / 2;
          if (argument < arguments) {
            position.mArgumentIndex = argument;
            strategy.OnStartFunctionArg(position);
            child(static_cast<std::size_t>(argument), kStartOfExpressionOp);
          } else {
            strategy.OnEndFunctionOp(position, function);
            stack.pop_back();
          }
        } else {
          position.mArgumentIndex = item.mPhase / 2 - 1;
          strategy.OnEndFunctionArg(position);
          stack.back().mPhase++;
        }
        break;
      }
    }
  }
}

bool ExpressionASTWalker::Walk(IExpressionASTWalkerStrategy& strategy) {
  if (!BuildTree()) return false;
  Visit(strategy);
  return true;
}
