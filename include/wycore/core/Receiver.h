// SPDX-License-Identifier: Apache-2.0
//
// Receiver.h - change notification between values, variables and their owners.
//
// An object that must hear about changes of another object (an expression that reads a variable,
// a property that holds a value) implements IReceiver and registers with the sender's
// ReceiverManager. The sender then Sends messages: "my value changed", "may I change my name?",
// "may I be deleted?", "is this new value acceptable to you?", "refresh your dataset caches".
// Every receiver may object to a question by answering false; Send answers true only when nobody
// objected. Every receiver is asked even after an objection, so that notifications are never lost
// half way.
//
// Registration is counted: an expression that reads a variable twice ("a + a") registers twice
// and must release twice; the receiver stays registered until its count drops to zero. The
// manager keeps receivers in the order of their first registration and delivers in that order.
//
// Messages travel along chains (variable -> expression -> the variable that holds the expression
// -> its owners ...), so one receiver can be reached along several paths. Each Send started from
// outside stamps the message with a fresh visit number; SingleVisitReceiver remembers the last
// number it handled and answers repeats of it with its first answer without handling them again.
//
// Ownership: managers never own their receivers; a receiver must unregister before it dies, and
// must not destroy the sender while the sender's Send is delivering to it.
// Threading: none; used on the thread that owns the design data. The visit counter is atomic only
// so that independent threads never reuse a number.
//
// Deliberately not here: queues, asynchronous delivery, or any knowledge of what a value is.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "wycore/Export.h"

class IReceiver;

// One message. `data` carries the kind's payload, typed by convention because this layer knows no
// value or string types:
//   kValueChanged          - data is null
//   kMayChangeName         - data points to the proposed new name (const AString*)
//   kMayDelete             - data is null
//   kValidateUpstreamValue - data points to the proposed new value (const ValueBase*)
//   kRefreshDatasetCache   - data is null
struct ReceiverMessage {
  enum Kind : std::int32_t {
    kValueChanged = 0,
    kMayChangeName = 1,
    kMayDelete = 2,
    kValidateUpstreamValue = 3,
    kRefreshDatasetCache = 4,
  };

  Kind kind = kValueChanged;
  const IReceiver* sender = nullptr;  // the object whose manager sends; may be null
  const void* data = nullptr;
  // 0 until a ReceiverManager sends the message; then the visit number of this delivery.
  std::uint64_t visit = 0;
};

// The receiving end. The default answer is "no objection" so that objects which derive from
// IReceiver only to be registrable (constant values, for example) need not implement anything.
class WYCORE_API IReceiver {
 public:
  virtual ~IReceiver() = default;
  // Handles one message; false objects to the question the message asks.
  virtual bool Receive(const ReceiverMessage& message);
};

// A counted, ordered set of receivers (not owned).
class WYCORE_API ReceiverManager {
 public:
  ReceiverManager() = default;
  // Copies carry no registrations: receivers registered with one object have not asked to hear
  // about its copy. Moves take the registrations along.
  ReceiverManager(const ReceiverManager&) {}
  ReceiverManager& operator=(const ReceiverManager&) { return *this; }
  ReceiverManager(ReceiverManager&&) noexcept = default;
  ReceiverManager& operator=(ReceiverManager&&) noexcept = default;

  // Adds one registration of `receiver` (null is ignored).
  void Add(IReceiver* receiver);
  // Drops one registration; false when `receiver` was not registered.
  bool Remove(IReceiver* receiver);
  // Drops every registration of `receiver`.
  void RemoveAll(IReceiver* receiver);
  bool Has(const IReceiver* receiver) const;
  // Number of registrations of `receiver`.
  int Count(const IReceiver* receiver) const;
  // Moves the registrations of `from` to `to` (merged with any `to` already has, keeping `to`'s
  // place when it had one, else `from`'s). False when `from` was not registered or `to` is null.
  bool ChangeOwner(IReceiver* from, IReceiver* to);
  bool Empty() const { return mEntries.empty(); }
  // Number of distinct receivers.
  std::size_t Size() const { return mEntries.size(); }
  void Clear() { mEntries.clear(); }
  // The distinct receivers in delivery order.
  std::vector<IReceiver*> Receivers() const;

  // Delivers `message` to every receiver in order, including those registered or still registered
  // when their turn comes (a receiver that unregisters another during delivery is respected).
  // A message with visit 0 gets a fresh visit number; a forwarded message keeps its number.
  // True when no receiver objected.
  bool Send(const ReceiverMessage& message) const;

  // A fresh, never reused, non-zero visit number.
  static std::uint64_t NewVisit();

 private:
  std::vector<std::pair<IReceiver*, int>> mEntries;  // receiver, registration count
};

// A receiver reached along several paths handles each delivery once. Derived classes implement
// ReceiveOnce; the tag T keeps the bookkeeping of different receiver families apart.
template <class T>
class SingleVisitReceiver : public virtual IReceiver {
 public:
  bool Receive(const ReceiverMessage& message) override {
    if (message.visit != 0 && message.visit == mLastVisit) return mLastAnswer;
    mLastVisit = message.visit;
    mLastAnswer = true;  // a cycle back to this receiver while it is handling does not object
    mLastAnswer = ReceiveOnce(message);
    return mLastAnswer;
  }

 protected:
  SingleVisitReceiver() = default;
  SingleVisitReceiver(const SingleVisitReceiver&) : IReceiver() {}
  SingleVisitReceiver& operator=(const SingleVisitReceiver&) { return *this; }

  virtual bool ReceiveOnce(const ReceiverMessage& message) = 0;

 private:
  std::uint64_t mLastVisit = 0;
  bool mLastAnswer = true;
};
