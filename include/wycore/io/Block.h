// SPDX-License-Identifier: Apache-2.0
//
// Block.h - the block tree: the items through which every persistent object is stored.
//
// A block (io::CBlock) is a named, ordered list of items: nested blocks, named values, vectors
// and function-like items; a bare value stands only as a function argument. Their text shapes:
//
//   $begin 'Name'             a block: one item per line, then $end 'Name'
//   Name=Value                io::CBlock_named_value
//   Name[3: a, b, c]          io::CBlock_vec (Name[0:] when empty)
//   Name(a, Key=b, V[2: x])   io::CBlock_func, whose arguments are values, named values,
//                             vectors and nested functions
//
// Items keep the order in which they were added or read; nothing is sorted and several items
// may bear one name. Names and values are io::CTokens; an item without a name answers an empty
// name.
//
// Ownership: items are reference-counted intrusively and held through io::CBlock_ptr; a block
// owns its items through such pointers and an item is deleted with its last pointer. Appending
// an item pointer shares the item; appending an item by reference appends a copy. The counts
// are plain integers: an item must not be shared between threads without outside locking, and
// an item must never be appended (directly or indirectly) to itself.
//
// Reading collects errors instead of throwing: each bad item is recorded as an
// io::XStreamioError in the block being read (with its code, message, line and column), the
// stream resynchronises at the next line, and the rest is read. Block::Error(...) and
// CollectErrors() report them, nested blocks included. Nesting of blocks and functions is
// bounded by the stream (CAbstract_istream::MaxDepth); a deeper block is skipped as a whole and
// reported with code 15.
//
// Threading: a tree is used by one thread at a time; a const block still keeps the extraction
// cursor of operator>>, so even reading a block through operator>> is not thread-safe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <type_traits>
#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/io/StreamError.h"
#include "wycore/io/Token.h"
#include "wycore/io/TokenStream.h"

namespace io {

class CBlock_item;
class CBlock;
class CBlock_func;
class CBlock_vec;
class CBlock_named_value;
class CBlock_value;
// The tree algorithms of Block.cpp: copying, comparing, measuring, writing and destroying a tree
// without recursion, so that no depth of nesting can exhaust the stack.
struct CBlockTree;

// Anything that writes itself to and reads itself from a token stream.
class WYCORE_API CStreamio_object {
 public:
  virtual ~CStreamio_object() = default;
  virtual void read(CAbstract_istream& stream) = 0;
  virtual void write(CAbstract_ostream& stream) const = 0;
};

// An intrusively counted pointer to an item (T derives from io::CBlock_item).
template <class T>
class CBlock_ptr {
 public:
  CBlock_ptr() noexcept = default;
  CBlock_ptr(std::nullptr_t) noexcept {}
  // Takes a share of `item` (typically just made with new).
  explicit CBlock_ptr(T* item) noexcept : mPtr(item) {
    if (mPtr != nullptr) mPtr->AddRef();
  }
  CBlock_ptr(const CBlock_ptr& other) noexcept : mPtr(other.mPtr) {
    if (mPtr != nullptr) mPtr->AddRef();
  }
  CBlock_ptr(CBlock_ptr&& other) noexcept : mPtr(other.mPtr) { other.mPtr = nullptr; }
  template <class U>
  requires std::is_convertible_v<U*, T*> CBlock_ptr(const CBlock_ptr<U>& other)
  noexcept : mPtr(other.get()) {
    if (mPtr != nullptr) mPtr->AddRef();
  }
  ~CBlock_ptr() {
    if (mPtr != nullptr) mPtr->ReleaseRef();
  }
  CBlock_ptr& operator=(CBlock_ptr other) noexcept {
    std::swap(mPtr, other.mPtr);
    return *this;
  }

  T* get() const noexcept { return mPtr; }
  T& operator*() const noexcept { return *mPtr; }
  T* operator->() const noexcept { return mPtr; }
  explicit operator bool() const noexcept { return mPtr != nullptr; }
  void reset() noexcept { CBlock_ptr().swap(*this); }
  void reset(T* item) noexcept { CBlock_ptr(item).swap(*this); }
  void swap(CBlock_ptr& other) noexcept { std::swap(mPtr, other.mPtr); }

  friend bool operator==(const CBlock_ptr& a, const CBlock_ptr& b) noexcept {
    return a.mPtr == b.mPtr;
  }

  // Reads one item of a block: the stream's tokens decide its kind (a block at $begin, else a
  // name followed by '=', '(' or '['). The new item replaces what the pointer held. Throws
  // io::XStreamioError (codes 7, 11, 12, 13, 14, 15) for an item that cannot be read.
  void read(CAbstract_istream& stream) requires std::is_same_v<T, CBlock_item>;
  void write(CAbstract_ostream& stream) const {
    if (mPtr != nullptr) mPtr->write(stream);
  }

 private:
  T* mPtr = nullptr;
};

using CBlockPtr = CBlock_ptr<CBlock_item>;
using CBlockFuncPtr = CBlock_ptr<CBlock_func>;
using CBlockVecPtr = CBlock_ptr<CBlock_vec>;

// The item reader behind CBlockPtr::read.
WYCORE_API CBlockPtr ReadBlockItem(CAbstract_istream& stream);

template <class T>
void CBlock_ptr<T>::read(CAbstract_istream& stream) requires std::is_same_v<T, CBlock_item> {
  *this = ReadBlockItem(stream);
}

// Tokens for values: integers become Int, floating-point numbers Double, booleans True/False,
// texts SingleQuotedText.
inline CToken ValueToken(bool value) { return CToken(value ? CToken::True : CToken::False); }
inline CToken ValueToken(int value) { return CToken(CToken::Int, value); }
inline CToken ValueToken(unsigned int value) { return CToken(CToken::Int, value); }
inline CToken ValueToken(long value) { return CToken(CToken::Int, value); }
inline CToken ValueToken(unsigned long value) { return CToken(CToken::Int, value); }
inline CToken ValueToken(long long value) { return CToken(CToken::Int, value); }
inline CToken ValueToken(unsigned long long value) { return CToken(CToken::Int, value); }
inline CToken ValueToken(float value) { return CToken(CToken::Double, value); }
inline CToken ValueToken(double value) { return CToken(CToken::Double, value); }
inline CToken ValueToken(const AString& value) { return CToken(CToken::SingleQuotedText, value); }
inline CToken ValueToken(const AChar* value) {
  return CToken(CToken::SingleQuotedText, AString(value));
}
inline CToken ValueToken(const CToken& value) { return value; }

// The scalar types an item can be queried for.
// clang-format off
#define WYCORE_BLOCK_QUERY_TYPES(X) \
  X(bool) X(short) X(unsigned short) X(int) X(unsigned int) X(long) X(unsigned long) \
  X(long long) X(unsigned long long) X(float) X(double) X(AString)
// clang-format on

// The abstract item.
class WYCORE_API CBlock_item : public CStreamio_object {
 public:
  CBlock_item() = default;
  // The reference count belongs to the object, never to its value: copies start unshared.
  CBlock_item(const CBlock_item& other) : CStreamio_object(), mName(other.mName) {}
  CBlock_item& operator=(const CBlock_item& other) {
    mName = other.mName;
    return *this;
  }
  ~CBlock_item() override = default;

  // Kind tests; exactly one is true for each item. A named value is not a plain value.
  virtual bool IsBlock() const { return false; }
  virtual bool IsFunc() const { return false; }
  virtual bool IsNamedValue() const { return false; }
  virtual bool IsValue() const { return false; }
  virtual bool IsVec() const { return false; }

  // True when the item has a name with text.
  virtual bool IsNamed() const { return !mName.IsEmpty(); }
  // No contents (no items, tokens or arguments; a Null value).
  virtual bool Empty() const = 0;
  // The name as text (a number name as it was written or printed); empty without a name.
  virtual AString Name() const;
  // Sets the name: a keyword when the text is one, else a SingleQuotedText (blocks: always a
  // SingleQuotedText, since $begin lines quote their names). Plain values have no name.
  virtual void Name(const AString& name);
  virtual const CToken& NameToken() const { return mName; }
  // Sets the name token as it stands (a name read from a stream keeps its kind).
  virtual void SetNameToken(const CToken& name) { mName = name; }
  // Items, tokens or arguments contained.
  virtual std::size_t Size() const = 0;
  // Memory held: names, tokens, children and containers, plus the object when `includeSelf`.
  virtual std::size_t SizeOf(bool includeSelf) const = 0;
  // Bytes in the binary token form: the item as the token sequence of its text shape (names,
  // keywords, punctuation, counts, values and line ends), each token by CToken::BinarySize.
  virtual std::size_t BinarySize(const CAbstract_ostream& stream) const = 0;
  // Empties the contents; the name stays.
  virtual void Clear() = 0;
  // Rebuilds the item from a text holding its text shape (for a plain value: one token). On any
  // error, or when the text holds another kind of item or more than one, the item is left as it
  // was and the result is false.
  virtual bool Unpack(const AString& text) = 0;
  // A deep copy.
  virtual CBlock_item* Clone() const = 0;
  // Same kind, equal names and contents; numbers compare by value, NaN equals NaN.
  virtual bool Equals(const CBlock_item& other) const = 0;

  // Scalar queries of value-like items (values, named values, vectors, functions; a vector or
  // function answers from its first scalar) with the token conversions of io::CToken. False,
  // with the target unchanged, for blocks and for values that do not convert.
#define WYCORE_DECLARE_QUERY(T) virtual bool Query(T& value) const;
  WYCORE_BLOCK_QUERY_TYPES(WYCORE_DECLARE_QUERY)
#undef WYCORE_DECLARE_QUERY
  // Copies the text into `buffer`, which must hold it and a terminating zero.
  virtual bool Query(AChar* buffer) const;

  // The intrusive count, for io::CBlock_ptr.
  void AddRef() const noexcept { ++mRefs; }
  void ReleaseRef() const noexcept {
    if (--mRefs == 0) delete this;
  }
  std::uint32_t RefCount() const noexcept { return mRefs; }

 protected:
  friend struct CBlockTree;
  CToken mName;

 private:
  mutable std::uint32_t mRefs = 0;
};

// The abstract function argument: plain values, named values and vectors.
class WYCORE_API CBlock_func_arg : public CBlock_item {};

// One bare token (a function argument).
class WYCORE_API CBlock_value : public CBlock_func_arg {
 public:
  CBlock_value() = default;
  explicit CBlock_value(const CToken& value) : mValue(value) {}
  template <class T>
  requires requires(const T& v) { ValueToken(v); }
  explicit CBlock_value(const T& value) : mValue(ValueToken(value)) {}

  bool IsValue() const override { return true; }
  bool Empty() const override { return mValue.IsClear(); }
  using CBlock_item::Name;
  void Name(const AString& name) override;
  void SetNameToken(const CToken& name) override;
  std::size_t Size() const override { return mValue.IsClear() ? 0 : 1; }
  std::size_t SizeOf(bool includeSelf) const override;
  std::size_t BinarySize(const CAbstract_ostream& stream) const override;
  void Clear() override { mValue.Clear(); }
  bool Unpack(const AString& text) override;
  CBlock_item* Clone() const override { return new CBlock_value(*this); }
  bool Equals(const CBlock_item& other) const override;

  const CToken& Value() const { return mValue; }
  void Value(const CToken& value) { mValue = value; }

#define WYCORE_DECLARE_QUERY(T) bool Query(T& value) const override;
  WYCORE_BLOCK_QUERY_TYPES(WYCORE_DECLARE_QUERY)
#undef WYCORE_DECLARE_QUERY
  bool Query(AChar* buffer) const override;

  // Reads one token that can stand as a value (code 12 otherwise).
  void read(CAbstract_istream& stream) override;
  void write(CAbstract_ostream& stream) const override;

 protected:
  CToken mValue;
};

// Name=Value.
class WYCORE_API CBlock_named_value : public CBlock_value {
 public:
  CBlock_named_value() = default;
  explicit CBlock_named_value(const AString& name) { Name(name); }
  CBlock_named_value(const AString& name, const CToken& value) : CBlock_value(value) { Name(name); }
  template <class T>
  requires requires(const T& v) { ValueToken(v); }
  CBlock_named_value(const AString& name, const T& value) : CBlock_value(ValueToken(value)) {
    Name(name);
  }

  bool IsValue() const override { return false; }
  bool IsNamedValue() const override { return true; }
  using CBlock_item::Name;
  void Name(const AString& name) override { CBlock_item::Name(name); }
  void SetNameToken(const CToken& name) override { mName = name; }
  std::size_t BinarySize(const CAbstract_ostream& stream) const override;
  bool Unpack(const AString& text) override;
  CBlock_item* Clone() const override { return new CBlock_named_value(*this); }

  // Reads Name=Value.
  void read(CAbstract_istream& stream) override;
  void write(CAbstract_ostream& stream) const override;
  // Reads from the '=' on, the name being known.
  void ReadRest(CAbstract_istream& stream);
};

// Name[n: t1, t2, ...].
class WYCORE_API CBlock_vec : public CBlock_func_arg {
 public:
  using const_iterator = std::vector<CToken>::const_iterator;

  CBlock_vec() = default;
  explicit CBlock_vec(const AString& name) { Name(name); }
  CBlock_vec(const AString& name, std::vector<CToken> tokens) : mTokens(std::move(tokens)) {
    Name(name);
  }
  template <class T>
  requires requires(const T& v) { ValueToken(v); }
  CBlock_vec(const AString& name, const std::vector<T>& values) {
    Name(name);
    mTokens.reserve(values.size());
    for (const T& v : values) mTokens.push_back(ValueToken(v));
  }

  bool IsVec() const override { return true; }
  bool Empty() const override { return mTokens.empty(); }
  std::size_t Size() const override { return mTokens.size(); }
  std::size_t SizeOf(bool includeSelf) const override;
  std::size_t BinarySize(const CAbstract_ostream& stream) const override;
  void Clear() override { mTokens.clear(); }
  bool Unpack(const AString& text) override;
  CBlock_item* Clone() const override { return new CBlock_vec(*this); }
  bool Equals(const CBlock_item& other) const override;

#define WYCORE_DECLARE_QUERY(T) bool Query(T& value) const override;
  WYCORE_BLOCK_QUERY_TYPES(WYCORE_DECLARE_QUERY)
#undef WYCORE_DECLARE_QUERY
  bool Query(AChar* buffer) const override;

  const std::vector<CToken>& Tokens() const { return mTokens; }
  const_iterator begin() const { return mTokens.begin(); }
  const_iterator end() const { return mTokens.end(); }
  // The token at `position`, or a shared empty (Null) token beyond the end.
  const CToken& Item(unsigned int position) const;
  void Append(const CToken& token) { mTokens.push_back(token); }
  template <class T>
  requires requires(const T& v) { ValueToken(v); }
  CBlock_vec& operator<<(const T& value) {
    mTokens.push_back(ValueToken(value));
    return *this;
  }

  // All tokens converted to T; false (and `values` unchanged) when one does not convert.
  template <class T>
  bool QueryValues(std::vector<T>& values) const {
    std::vector<T> out;
    out.reserve(mTokens.size());
    for (const CToken& token : mTokens) {
      T value{};
      if (!token.Query(value)) return false;
      out.push_back(std::move(value));
    }
    values.swap(out);
    return true;
  }
  // The token at `position` converted to T; on success `position` moves to the next one.
  template <class T>
  bool QueryUnamedValues(unsigned int& position, T& value) const {
    if (position >= mTokens.size() || !mTokens[position].Query(value)) return false;
    ++position;
    return true;
  }

  // Reads Name[n: ...].
  void read(CAbstract_istream& stream) override;
  void write(CAbstract_ostream& stream) const override;
  // Reads from the '[' on, the name being known.
  void ReadRest(CAbstract_istream& stream);

 private:
  std::vector<CToken> mTokens;
};

// Name(arg, Key=value, V[n: ...], Nested(...)).
class WYCORE_API CBlock_func : public CBlock_item {
 public:
  using const_iterator = std::vector<CBlockPtr>::const_iterator;

  CBlock_func() = default;
  explicit CBlock_func(const AString& name) { Name(name); }
  CBlock_func(const CBlock_func& other);
  CBlock_func& operator=(const CBlock_func& other);
  CBlock_func(CBlock_func&&) noexcept = default;
  CBlock_func& operator=(CBlock_func&&) noexcept = default;
  // Nested arguments are released without recursion (see CBlockTree).
  ~CBlock_func() override;

  bool IsFunc() const override { return true; }
  bool Empty() const override { return mArgs.empty(); }
  std::size_t Size() const override { return mArgs.size(); }
  std::size_t SizeOf(bool includeSelf) const override;
  std::size_t BinarySize(const CAbstract_ostream& stream) const override;
  void Clear() override { mArgs.clear(); }
  bool Unpack(const AString& text) override;
  CBlock_item* Clone() const override { return new CBlock_func(*this); }
  bool Equals(const CBlock_item& other) const override;

#define WYCORE_DECLARE_QUERY(T) bool Query(T& value) const override;
  WYCORE_BLOCK_QUERY_TYPES(WYCORE_DECLARE_QUERY)
#undef WYCORE_DECLARE_QUERY
  bool Query(AChar* buffer) const override;

  const std::vector<CBlockPtr>& Args() const { return mArgs; }
  const_iterator begin() const { return mArgs.begin(); }
  const_iterator end() const { return mArgs.end(); }

  // Appends an argument: a value, named value, vector or function (a block cannot be one; it
  // fires a check and is not appended, as is a null pointer). Pointers share; references copy.
  CBlock_func& operator<<(const CBlockPtr& arg);
  CBlock_func& operator<<(const CBlock_value& arg);
  CBlock_func& operator<<(const CBlock_vec& arg);
  CBlock_func& operator<<(const CBlock_func& arg);

  // The next plain (unnamed) value argument from `it` on, converted to T; `it` moves past it.
  // False when there is none (then `it` is end()) or it does not convert.
  template <class T>
  bool QueryUnamedValues(const_iterator& it, T& value) const {
    for (; it != mArgs.end(); ++it) {
      if ((*it)->IsValue()) {
        const bool ok = (*it)->Query(value);
        ++it;
        return ok;
      }
    }
    return false;
  }
  // The next nested function argument from `it` on.
  bool QueryUnamedValues(const_iterator& it, CBlockFuncPtr& func) const;

  // Reads Name(...).
  void read(CAbstract_istream& stream) override;
  void write(CAbstract_ostream& stream) const override;
  // Reads from the '(' on, the name being known.
  void ReadRest(CAbstract_istream& stream);

 private:
  friend struct CBlockTree;
  std::vector<CBlockPtr> mArgs;
};

// An object that stands for itself as one item of a block.
class WYCORE_API CStreamio_item_object {
 public:
  virtual ~CStreamio_item_object() = default;
  // Appends exactly one item that stands for this object.
  virtual void WriteToBlock(CBlock& block) const = 0;
  // Reads this object from its item in `block`; true when the item was found.
  virtual bool ReadFromBlock(const CBlock& block) = 0;
};

// In a chain of extractions, stores whether the extraction before it found its item:
//   block >> a >> CQuery_ok_manip(okA) >> b >> CQuery_ok_manip(okB);
class CQuery_ok_manip {
 public:
  explicit CQuery_ok_manip(bool& ok) : mOk(ok) {}
  bool& mOk;
};

// A named block of items.
class WYCORE_API CBlock : public CBlock_item {
 public:
  using const_iterator = std::vector<CBlockPtr>::const_iterator;
  using error_iterator = std::list<XStreamioError>::const_iterator;

  CBlock() = default;
  explicit CBlock(const AString& name) { Name(name); }
  // Copies are deep: every item is cloned. Errors are copied too; the cursor is not.
  CBlock(const CBlock& other);
  CBlock& operator=(const CBlock& other);
  CBlock(CBlock&& other) noexcept;
  CBlock& operator=(CBlock&& other) noexcept;
  // Nested items are released without recursion (see CBlockTree).
  ~CBlock() override;

  bool IsBlock() const override { return true; }
  bool Empty() const override { return mItems.empty(); }
  using CBlock_item::Name;
  void Name(const AString& name) override;
  std::size_t Size() const override { return mItems.size(); }
  std::size_t SizeOf(bool includeSelf) const override;
  std::size_t BinarySize(const CAbstract_ostream& stream) const override;
  // Removes the items and the errors; the name stays.
  void Clear() override;
  bool Unpack(const AString& text) override;
  CBlock_item* Clone() const override { return new CBlock(*this); }
  bool Equals(const CBlock_item& other) const override;

  // ---- Items -----------------------------------------------------------------------------

  const std::vector<CBlockPtr>& Items() const { return mItems; }
  const_iterator begin() const { return mItems.begin(); }
  const_iterator end() const { return mItems.end(); }
  // The first item named `name` (exact text), of any kind; null when there is none.
  const CBlock_item* Find(const AString& name) const;
  // The first block named `name`; null when there is none.
  const CBlock* FindBlock(const AString& name) const;
  // The first item named `name` queried as T: false when absent or when it does not convert.
  template <class T>
  bool QueryValue(const AString& name, T& value) const {
    const CBlock_item* item = Find(name);
    return item != nullptr && item->Query(value);
  }

  // ---- Building --------------------------------------------------------------------------
  //
  // References append copies; pointers share the item. A null pointer, or a bare value (which
  // can only be a function argument), fires a check and is not appended.

  CBlock& operator<<(const CBlock& block);
  CBlock& operator<<(const CBlock_named_value& value);
  CBlock& operator<<(const CBlock_vec& vec);
  CBlock& operator<<(const CBlock_func& func);
  CBlock& operator<<(const CBlockPtr& item);
  CBlock& operator<<(const CBlockFuncPtr& func) { return *this << CBlockPtr(func); }
  CBlock& operator<<(const CBlockVecPtr& vec) { return *this << CBlockPtr(vec); }
  CBlock& operator<<(const CStreamio_item_object& object);

  // ---- Extraction ------------------------------------------------------------------------
  //
  // Each takes the next item of the target's kind: a target with a name looks for that name
  // from the cursor on, wrapping around once (so that items named alike come in turn); a target
  // without a name takes the next item of its kind after the cursor. The found item is copied
  // into the target (a pointer target shares it) and the cursor moves past it. An absent item
  // leaves the target unchanged; Found() tells which happened.

  const CBlock& operator>>(CBlock& block) const;
  const CBlock& operator>>(CBlock_named_value& value) const;
  const CBlock& operator>>(CBlock_vec& vec) const;
  const CBlock& operator>>(CBlock_func& func) const;
  // Any kind: by the name of the item the pointer holds, else the next item.
  const CBlock& operator>>(CBlockPtr& item) const;
  const CBlock& operator>>(CStreamio_item_object& object) const;
  const CBlock& operator>>(CQuery_ok_manip manip) const {
    manip.mOk = mFound;
    return *this;
  }
  bool Found() const { return mFound; }
  // Moves the extraction cursor back to the first item.
  void Rewind() const { mCursor = 0; }

  // ---- Errors ----------------------------------------------------------------------------

  // This block's own read errors (nested blocks keep theirs).
  error_iterator begin_error() const { return mErrors.begin(); }
  error_iterator end_error() const { return mErrors.end(); }
  // True when reading this block or a nested one produced errors; `clear` forgets them all.
  bool Error(bool const& clear = false);
  // The same, appending each error's text ("line L, column C: message (code N)").
  bool Error(std::list<AString>& messages, bool const& clear = false);
  // Every error of this block and the blocks within, ordered by line and column.
  std::vector<XStreamioError> CollectErrors() const;
  void AddError(const XStreamioError& error) { mErrors.push_back(error); }

  // ---- Streams ---------------------------------------------------------------------------

  // Reads $begin 'Name' ... $end 'Name' from the stream, collecting errors (see the file
  // comment). A stream that has already failed gives one error of code 3 and nothing is read.
  void read(CAbstract_istream& stream) override;
  // Writes $begin 'Name', the items one per line, $end 'Name'.
  void write(CAbstract_ostream& stream) const override;
  // Reads items up to the end of the input, as the contents of a file; a stray $end is an
  // error of code 3.
  void ReadItems(CAbstract_istream& stream);
  // Writes the items, one per line, without the $begin/$end lines.
  void WriteItems(CAbstract_ostream& stream) const;

 private:
  void ReadBody(CAbstract_istream& stream, bool topLevel);
  void RecordStreamError(const CAbstract_istream& stream, const AString& message);
  template <class Pred>
  const CBlock_item* Extract(bool named, Pred pred) const;

  friend struct CBlockTree;
  std::vector<CBlockPtr> mItems;
  std::list<XStreamioError> mErrors;
  mutable std::size_t mCursor = 0;
  mutable bool mFound = false;
};

}  // namespace io
