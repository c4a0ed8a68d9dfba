// SPDX-License-Identifier: Apache-2.0
//
// WeakPointer.h - non-owning pointers that know when their object is gone.
//
// Name spaces list variables and other name spaces that they do not own; the owners of those
// objects may delete them in any order. An object that derives from (or holds) a
// base::WeakPointerProvider hands out base::WeakPtr<T>s that answer null once the object has been
// destroyed, so a stale entry is skipped instead of being read after it was freed.
//
// A provider's copy is a new object with a life of its own: it never shares the original's token.
// Threading: like a std::weak_ptr; the objects themselves belong to one thread.
#pragma once

#include <memory>

namespace base {

class WeakPointerProvider {
 public:
  WeakPointerProvider() : mToken(std::make_shared<char>(0)) {}
  WeakPointerProvider(const WeakPointerProvider&) : WeakPointerProvider() {}
  WeakPointerProvider& operator=(const WeakPointerProvider&) { return *this; }
  ~WeakPointerProvider() = default;

  // Expires when this provider is destroyed.
  std::weak_ptr<const void> GetLifetimeToken() const { return mToken; }

 private:
  std::shared_ptr<const char> mToken;
};

template <class T>
class WeakPtr {
 public:
  WeakPtr() = default;
  // `object` stays reachable while `provider` (the object's own provider) lives.
  WeakPtr(T* object, const WeakPointerProvider& provider)
      : mObject(object), mToken(provider.GetLifetimeToken()) {}

  // The object, or null when it has been destroyed (or none was given).
  T* Get() const { return mToken.expired() ? nullptr : mObject; }
  // The address the pointer was made for, alive or not; for identity comparisons only.
  const T* Address() const { return mObject; }
  bool Expired() const { return mToken.expired(); }
  void Reset() {
    mObject = nullptr;
    mToken.reset();
  }

 private:
  T* mObject = nullptr;
  std::weak_ptr<const void> mToken;
};

}  // namespace base
