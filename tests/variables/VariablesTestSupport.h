// SPDX-License-Identifier: Apache-2.0
//
// VariablesTestSupport.h - small values and receivers for the tests of the variables area.
//
// RefValue stands in for an expression until the expression parser exists: it reads a list of
// variables (its value is their sum) and reports them through GetReferencedVariables, which is
// all the cycle check of Variable looks at.
#pragma once

#include <vector>

#include "wycore/core/Receiver.h"
#include "wycore/value/ValueBase.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableServer.h"

namespace wycore::test {

class RefValue : public ValueBase {
 public:
  RefValue(std::vector<const Variable*> reads, const AString& text)
      : mReads(std::move(reads)), mText(text) {}
  double GetValue() const override {
    double sum = 0.0;
    for (const Variable* v : mReads) sum += v->GetValue();
    return sum;
  }
  AString GetValueText() const override { return mText; }
  ValueBase* CloneValueBase() const override { return new RefValue(*this); }
  bool IsConstant() const override { return false; }
  val::ParameterType GetParameterType() const override { return val::kDoubleParam; }
  void GetReferencedVariables(std::vector<const Variable*>& out) const override {
    out.insert(out.end(), mReads.begin(), mReads.end());
  }

 private:
  std::vector<const Variable*> mReads;
  AString mText;
};

// Records what it hears and objects to the kinds it is told to.
class RecordingOwner : public IReceiver {
 public:
  explicit RecordingOwner(std::vector<ReceiverMessage::Kind> objectTo = {})
      : mObjectTo(std::move(objectTo)) {}
  bool Receive(const ReceiverMessage& message) override {
    mHeard.push_back(message.kind);
    for (auto kind : mObjectTo) {
      if (kind == message.kind) return false;
    }
    return true;
  }
  int Count(ReceiverMessage::Kind kind) const {
    int n = 0;
    for (auto k : mHeard) n += k == kind ? 1 : 0;
    return n;
  }

 private:
  std::vector<ReceiverMessage::Kind> mObjectTo;
  std::vector<ReceiverMessage::Kind> mHeard;
};

// Answers exactly the variables it was given (by exact name).
class ListServer : public IVariableServer {
 public:
  explicit ListServer(std::vector<Variable*> variables) : mVariables(std::move(variables)) {}
  Variable* ResolveVariable(const AString& name) const override {
    for (Variable* v : mVariables) {
      if (v->GetName() == name) return v;
    }
    return nullptr;
  }
  void GetVariableNames(std::vector<AString>& out) const override {
    for (Variable* v : mVariables) out.push_back(v->GetName());
  }

 private:
  std::vector<Variable*> mVariables;
};

}  // namespace wycore::test
