// SPDX-License-Identifier: Apache-2.0
//
// ExpressionASTWalker.h - turns an expression's postfix operation stream back into a tree and
// walks it, calling a strategy once per node.
//
// The parser writes operands before their operator (see Operation.h for the layout), which is
// what an evaluator wants but not what text generation, dependency queries or rewriting want:
// those need to know, for every operator, its operands and the operator above it. The walker
// rebuilds that tree from the stream, the value list and the function list, and then visits it
// depth first, operands before their operator, in the order the stream has them:
//
//   - a value (codes 1 to 17):  the data callback of its kind, with the value-list entry;
//   - a binary operator:         left subtree, right subtree, the operator's callback;
//   - "-" or "!":                operand subtree, the operator's callback;
//   - a function call:           OnStartFunctionOp, then per argument OnStartFunctionArg, the
//                                argument's subtree, OnEndFunctionArg; last OnEndFunctionOp;
//   - an array element a[i]:     the array's data callback, OnArrayIndexOpStart, the index's
//                                subtree, OnArrayIndexOpEnd, OnArrayDereferenceOp.
//
// Operator callbacks receive the operation and the operation of their parent node, which is
// kStartOfExpressionOp at the top of the expression and of each function argument, and
// kArrayDereferenceOp at the top of an array index.
//
// The stream is checked completely before the first callback: a malformed stream (which only a
// faulty producer can make) fires a check naming what is wrong and Walk returns false without
// calling the strategy at all. Building and walking use explicit stacks, never recursion, so the
// depth of an expression is limited by memory alone.
//
// Ownership: the walker reads the vectors it is given and must not outlive them; the values are
// passed to the strategy as they are (never copied). Threading: one walk per walker at a time.
#pragma once

#include <cstddef>
#include <vector>

#include "wycore/Export.h"
#include "wycore/value/Expression.h"  // FunctionCall, for the overload that takes the parts
#include "wycore/value/Operation.h"

class ValueBase;
class Function;

namespace val {

// Where a node stands: its entry in the operation stream, its value or function, its depth.
struct ASTPosition {
  int mOperationIndex = -1;  // the node's code in the operation stream
  int mValueIndex = -1;      // data nodes: the entry of the value list
  int mFunctionIndex = -1;   // function nodes: the entry of the function list
  int mArgumentIndex = -1;   // OnStartFunctionArg / OnEndFunctionArg: which argument, from 0
  int mArgumentCount = 0;    // function nodes: how many arguments the call has
  int mDepth = 0;            // 0 for the top node of the expression; +1 per level below
  Operation mParentOperation = kStartOfExpressionOp;
};

}  // namespace val

// The callbacks of a walk, one per node kind. Every callback does nothing by default, so a
// strategy overrides only what it needs. Data callbacks receive the value-list entry (never
// null): a constant, or a VariableReferenceValue for a variable read by name.
class WYCORE_API IExpressionASTWalkerStrategy {
 public:
  virtual ~IExpressionASTWalkerStrategy() = default;

  // ---- Data nodes (the push codes 1 to 17) ------------------------------------------------
  virtual void OnDoubleOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnComplexOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnCircleOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnArcOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnRegionOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnDatasetOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnDoubleMatrixOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnComplexMatrixOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnStringOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnStringMatrixOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnDynamicDoubleDoubleDatasetOp(const val::ASTPosition& position,
                                              const ValueBase* value);
  virtual void OnDynamicDoubleComplexDatasetOp(const val::ASTPosition& position,
                                               const ValueBase* value);
  virtual void OnIntOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnCharOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnEnumOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnTextStringArrayOp(const val::ASTPosition& position, const ValueBase* value);
  virtual void OnDoubleArrayOp(const val::ASTPosition& position, const ValueBase* value);

  // ---- Operator nodes: the operation and the operation of the parent node ------------------
  virtual void OnUnaryMinusOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnNotOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnEqualOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnNotEqualOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnLessOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnGreaterOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnLessEqualOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnGreaterEqualOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnAndOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnOrOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnPlusOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnMinusOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnMultiplyOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnDivideOp(const val::ASTPosition& position, Operation op, Operation parent);
  virtual void OnRaiseToPowerOp(const val::ASTPosition& position, Operation op, Operation parent);

  // ---- Array elements ----------------------------------------------------------------------
  virtual void OnArrayIndexOpStart(const val::ASTPosition& position);
  virtual void OnArrayIndexOpEnd(const val::ASTPosition& position);
  virtual void OnArrayDereferenceOp(const val::ASTPosition& position, Operation parent);

  // ---- Function calls (`function` may be null only in hand-made function lists) ------------
  virtual void OnStartFunctionOp(const val::ASTPosition& position, const Function* function);
  virtual void OnStartFunctionArg(const val::ASTPosition& position);
  virtual void OnEndFunctionArg(const val::ASTPosition& position);
  virtual void OnEndFunctionOp(const val::ASTPosition& position, const Function* function);
};

class WYCORE_API ExpressionASTWalker {
 public:
  // Walks the stream, values and calls of `expression`.
  explicit ExpressionASTWalker(const Expression& expression);
  // Walks parts given separately (for producers that build streams themselves, and for tests).
  ExpressionASTWalker(const std::vector<Operation>& operations,
                      const std::vector<ValueBase*>& values,
                      const std::vector<FunctionCall>& functionCalls);
  ~ExpressionASTWalker();
  ExpressionASTWalker(const ExpressionASTWalker&) = delete;
  ExpressionASTWalker& operator=(const ExpressionASTWalker&) = delete;

  // Rebuilds the tree and calls `strategy` for every node. False, after a check, when the
  // stream is malformed (then no callback has been made).
  bool Walk(IExpressionASTWalkerStrategy& strategy);

 private:
  struct Node;
  struct Frame;

  bool BuildTree();
  void Visit(IExpressionASTWalkerStrategy& strategy) const;
  void CallNode(IExpressionASTWalkerStrategy& strategy, const Node& node,
                const val::ASTPosition& position) const;
  // Whether the entry at mCursor is `op` followed by two (or one) kind entries: the checks of
  // the stream layout.
  bool IsOperationFollowedByTwoModifiers(Operation op) const;
  bool IsOperationFollowedByOneModifier(Operation op) const;
  bool IsKindAt(std::size_t index) const;

  const std::vector<Operation>& mOperations;
  const std::vector<ValueBase*>& mValues;
  const std::vector<FunctionCall>& mFunctionCalls;

  std::vector<Node> mNodes;
  int mRoot = -1;
  std::size_t mCursor = 0;
};
