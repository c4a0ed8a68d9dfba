// SPDX-License-Identifier: Apache-2.0
//
// ReceiverTest.cpp - ReceiverManager counting and order, objections, delivery while receivers
// come and go, and the single visit of SingleVisitReceiver.
#include <gtest/gtest.h>

#include <vector>

#include "wycore/core/Receiver.h"

namespace {

struct Recorder : IReceiver {
  bool answer = true;
  std::vector<ReceiverMessage::Kind> got;
  bool Receive(const ReceiverMessage& m) override {
    got.push_back(m.kind);
    return answer;
  }
};

// Forwards every message it handles to its own owners, like a variable does.
struct Forwarder : SingleVisitReceiver<Forwarder> {
  ReceiverManager owners;
  int handled = 0;
  bool answer = true;
  bool ReceiveOnce(const ReceiverMessage& m) override {
    ++handled;
    const bool forwarded = owners.Send(m);
    return answer && forwarded;
  }
};

TEST(ReceiverManager, CountsRegistrationsAndKeepsFirstOrder) {
  ReceiverManager m;
  Recorder a, b;
  m.Add(&a);
  m.Add(&b);
  m.Add(&a);
  m.Add(nullptr);
  EXPECT_EQ(2u, m.Size());
  EXPECT_EQ(2, m.Count(&a));
  EXPECT_EQ((std::vector<IReceiver*>{&a, &b}), m.Receivers());
  EXPECT_TRUE(m.Remove(&a));
  EXPECT_TRUE(m.Has(&a));  // one registration left
  EXPECT_TRUE(m.Remove(&a));
  EXPECT_FALSE(m.Has(&a));
  EXPECT_FALSE(m.Remove(&a));
  EXPECT_EQ(1u, m.Size());
}

TEST(ReceiverManager, ChangeOwnerMovesAndMergesCounts) {
  ReceiverManager m;
  Recorder a, b, c;
  m.Add(&a);
  m.Add(&a);
  m.Add(&b);
  EXPECT_TRUE(m.ChangeOwner(&a, &c));  // c takes a's place and count
  EXPECT_EQ((std::vector<IReceiver*>{&c, &b}), m.Receivers());
  EXPECT_EQ(2, m.Count(&c));
  EXPECT_TRUE(m.ChangeOwner(&b, &c));  // merged into c
  EXPECT_EQ(3, m.Count(&c));
  EXPECT_EQ(1u, m.Size());
  EXPECT_FALSE(m.ChangeOwner(&a, &b));  // a is not registered
  EXPECT_FALSE(m.ChangeOwner(&c, nullptr));
}

TEST(ReceiverManager, SendAsksEveryoneAndReportsAnyObjection) {
  ReceiverManager m;
  Recorder a, b, c;
  b.answer = false;
  m.Add(&a);
  m.Add(&b);
  m.Add(&c);
  EXPECT_FALSE(m.Send({ReceiverMessage::kMayChangeName}));
  EXPECT_EQ(1u, c.got.size());  // asked after b objected
  b.answer = true;
  EXPECT_TRUE(m.Send({ReceiverMessage::kMayDelete}));
  EXPECT_TRUE(ReceiverManager().Send({ReceiverMessage::kValueChanged}));
}

TEST(ReceiverManager, ReceiverRemovedDuringDeliveryIsSkipped) {
  ReceiverManager m;
  Recorder later;
  struct Remover : IReceiver {
    ReceiverManager* m;
    IReceiver* victim;
    bool Receive(const ReceiverMessage&) override {
      m->RemoveAll(victim);
      return true;
    }
  } remover;
  remover.m = &m;
  remover.victim = &later;
  m.Add(&remover);
  m.Add(&later);
  EXPECT_TRUE(m.Send({ReceiverMessage::kValueChanged}));
  EXPECT_TRUE(later.got.empty());
}

TEST(SingleVisitReceiver, HandlesEachDeliveryOnceAlongSeveralPaths) {
  // top -> {left, right} -> bottom: bottom is reached twice by one Send.
  Forwarder top, left, right, bottom;
  top.owners.Add(&left);
  top.owners.Add(&right);
  left.owners.Add(&bottom);
  right.owners.Add(&bottom);
  ReceiverManager source;
  source.Add(&top);
  EXPECT_TRUE(source.Send({ReceiverMessage::kValueChanged}));
  EXPECT_EQ(1, bottom.handled);
  EXPECT_TRUE(source.Send({ReceiverMessage::kValueChanged}));  // a new delivery
  EXPECT_EQ(2, bottom.handled);

  // The first answer is repeated to the second path.
  bottom.answer = false;
  EXPECT_FALSE(source.Send({ReceiverMessage::kMayDelete}));
  EXPECT_EQ(3, bottom.handled);
}

TEST(SingleVisitReceiver, CycleBackToSenderEnds) {
  Forwarder a, b;
  a.owners.Add(&b);
  b.owners.Add(&a);
  ReceiverManager source;
  source.Add(&a);
  EXPECT_TRUE(source.Send({ReceiverMessage::kValueChanged}));
  EXPECT_EQ(1, a.handled);
  EXPECT_EQ(1, b.handled);
}

}  // namespace
