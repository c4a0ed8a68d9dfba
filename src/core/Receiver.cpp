// SPDX-License-Identifier: Apache-2.0
//
// Receiver.cpp - the counted receiver set and its delivery.
#include "wycore/core/Receiver.h"

#include <algorithm>
#include <atomic>

bool IReceiver::Receive(const ReceiverMessage&) { return true; }

namespace {

template <class Entries>
auto Find(Entries& entries, const IReceiver* receiver) {
  return std::find_if(entries.begin(), entries.end(),
                      [receiver](const auto& e) { return e.first == receiver; });
}

}  // namespace

void ReceiverManager::Add(IReceiver* receiver) {
  if (receiver == nullptr) return;
  auto it = Find(mEntries, receiver);
  if (it != mEntries.end()) {
    ++it->second;
  } else {
    mEntries.emplace_back(receiver, 1);
  }
}

bool ReceiverManager::Remove(IReceiver* receiver) {
  auto it = Find(mEntries, receiver);
  if (it == mEntries.end()) return false;
  if (--it->second == 0) mEntries.erase(it);
  return true;
}

void ReceiverManager::RemoveAll(IReceiver* receiver) {
  auto it = Find(mEntries, receiver);
  if (it != mEntries.end()) mEntries.erase(it);
}

bool ReceiverManager::Has(const IReceiver* receiver) const {
  return Find(mEntries, receiver) != mEntries.end();
}

int ReceiverManager::Count(const IReceiver* receiver) const {
  auto it = Find(mEntries, receiver);
  return it == mEntries.end() ? 0 : it->second;
}

bool ReceiverManager::ChangeOwner(IReceiver* from, IReceiver* to) {
  if (to == nullptr) return false;
  auto it = Find(mEntries, from);
  if (it == mEntries.end()) return false;
  if (from == to) return true;
  const int count = it->second;
  auto target = Find(mEntries, to);
  if (target != mEntries.end()) {
    target->second += count;
    mEntries.erase(Find(mEntries, from));
  } else {
    it->first = to;
  }
  return true;
}

std::vector<IReceiver*> ReceiverManager::Receivers() const {
  std::vector<IReceiver*> out;
  out.reserve(mEntries.size());
  for (const auto& e : mEntries) out.push_back(e.first);
  return out;
}

bool ReceiverManager::Send(const ReceiverMessage& message) const {
  ReceiverMessage m = message;
  if (m.visit == 0) m.visit = NewVisit();
  // Delivery may change the set (a receiver releases itself or another one): walk a snapshot and
  // skip receivers that are no longer registered when their turn comes.
  const std::vector<IReceiver*> snapshot = Receivers();
  bool ok = true;
  for (IReceiver* r : snapshot) {
    if (!Has(r)) continue;
    if (!r->Receive(m)) ok = false;
  }
  return ok;
}

std::uint64_t ReceiverManager::NewVisit() {
  static std::atomic<std::uint64_t> counter{0};
  return ++counter;
}
