// SPDX-License-Identifier: Apache-2.0
//
// Block.cpp - the block tree: building, extraction, reading with error collection, writing.
//
// Reading is recursive descent over the stream's tokens; the recursion (blocks in blocks,
// functions in functions) is bounded by the stream's nesting limit, so that no input can take
// the reader deeper than that. Every item is on one line in the text form, which is what makes
// "skip to the next line" a sound resynchronisation after a bad item.
#include "wycore/io/Block.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <typeinfo>

#include "LocalCalls.h"
#include "wycore/core/Check.h"
#include "wycore/core/Utf.h"
#include "wycore/io/TextStream.h"

namespace io {

namespace {

using E = XStreamioError;

const CToken_grammar& Grammar() {
  static const CToken_grammar grammar;
  return grammar;
}

AString Num(long long n) { return AString(wycore::Utf8ToUtf16(std::to_string(n))); }

AChar SymbolOf(const CToken& token) {
  return token.IsSymbol() && token.ACharLen() == 1 ? token.ACharPtr()[0] : 0;
}
bool SameToken(const CToken& a, const CToken& b) {
  if (a.Type() != b.Type()) return false;
  if (a.IsNumber() && std::isnan(a.Value()) && std::isnan(b.Value())) return true;
  return a == b;
}

bool NameMatches(const CToken& token, const AString& name) {
  if (token.IsString())
    return std::u16string_view(token.ACharPtr(), token.ACharLen()) == name.View();
  return TokenNameText(token) == name;
}

// A token as the messages name it.
AString Describe(const CToken& token) {
  AString text = token.GetAString();
  if (text.size() > 40) text = text.Left(37) + u"...";
  switch (token.Type()) {
    case CToken::Null:
      return AString(u"nothing");
    case CToken::Eol:
      return AString(u"the end of the line");
    case CToken::Eof:
      return AString(u"the end of the input");
    case CToken::Error: {
      char buf[16];
      const unsigned code = token.ACharLen() > 0 ? token.ACharPtr()[0] : 0u;
      std::snprintf(buf, sizeof buf, "U+%04X", code);
      return u"the unknown character " + AString(wycore::Utf8ToUtf16(buf));
    }
    case CToken::Symbol:
      return u"the symbol '" + text + u"'";
    case CToken::Keyword:
      return u"the keyword " + text;
    case CToken::True:
    case CToken::False:
    case CToken::Short:
    case CToken::Int:
    case CToken::Long:
    case CToken::UnsignedShort:
    case CToken::UnsignedInt:
    case CToken::UnsignedLong:
    case CToken::Double:
    case CToken::Float:
    case CToken::Hex:
      return u"the value " + TokenNameText(token);
    case CToken::SingleQuotedText:
    case CToken::DoubleQuotedText:
    case CToken::CData:
    case CToken::WhiteSpace:
    case CToken::Comment:
      return u"the text '" + text + u"'";
  }
  return AString(u"an unknown token");
}

// Values and names are written so that they read back: a token that cannot stand in its place
// (a symbol, a Null or control token) goes out as a text of its characters.
void WriteValue(const CToken& value, CAbstract_ostream& stream) {
  if (CanStandAsValue(value)) {
    value.write(stream);
  } else {
    CToken(CToken::SingleQuotedText, value.GetAString()).write(stream);
  }
}

void WriteName(const CToken& name, CAbstract_ostream& stream) {
  if (CanStandAsName(name)) {
    name.write(stream);
  } else {
    CToken(CToken::SingleQuotedText, name.GetAString()).write(stream);
  }
}

AString Quoted(const CToken& name) { return u"'" + TokenNameText(name) + u"'"; }

class NestingGuard {
 public:
  explicit NestingGuard(CAbstract_istream& stream)
      : mStream(stream), mEntered(stream.EnterNesting()) {}
  ~NestingGuard() {
    if (mEntered) mStream.LeaveNesting();
  }
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;
  explicit operator bool() const { return mEntered; }

 private:
  CAbstract_istream& mStream;
  bool mEntered;
};

[[noreturn]] void RaiseTooDeep(const CAbstract_istream& stream) {
  stream.Raise(E::kTooDeep, u"blocks and functions are nested deeper than " +
                                Num(stream.MaxDepth()) + u" levels");
}

void RaiseUnterminated(const CAbstract_istream& stream) {
  if (stream.TokenUnterminated()) {
    stream.Raise(E::kBadValue, Describe(stream.Token()) + u" has no closing quote");
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// CBlockTree: the whole-tree operations, without recursion
//
// A tree built in code may be nested as deeply as its builder likes (reading bounds the depth,
// building does not), so copying, comparing, measuring, writing and destroying walk the tree
// with an explicit stack. Only blocks and functions hold items; the walk goes into those whose
// type is exactly CBlock or CBlock_func and hands every other item (values, vectors, and classes
// derived by users, which may override these operations) to its own virtual function.

struct CBlockTree {
  // Gives a new item of the reader its name token (a move: no share of the text changes hands).
  static void TakeName(CBlock_item& item, CToken&& name) noexcept { item.mName = std::move(name); }

  // The name of a block or function (the token itself, as the item's own functions use it).
  static const CToken& NameOf(const CBlock_item& item) {
    if (item.IsBlock()) return static_cast<const CBlock&>(item).mName;
    return static_cast<const CBlock_func&>(item).mName;
  }

  // The items of a block or function (of a class derived from one too).
  static const std::vector<CBlockPtr>& Shell(const CBlock_item& item) {
    if (item.IsBlock()) return static_cast<const CBlock&>(item).mItems;
    return static_cast<const CBlock_func&>(item).mArgs;
  }

  // The items of an item whose type is exactly CBlock or CBlock_func, or null for any other
  // item: these are the items the walks go into.
  static const std::vector<CBlockPtr>* Children(const CBlock_item& item) {
    if (typeid(item) == typeid(CBlock)) return &static_cast<const CBlock&>(item).mItems;
    if (typeid(item) == typeid(CBlock_func)) return &static_cast<const CBlock_func&>(item).mArgs;
    return nullptr;
  }

  // Releases `items`; the subtrees that this releases for good are taken apart level by level,
  // so that no destructor finds nested items of its own to release.
  static void Release(std::vector<CBlockPtr>& items) noexcept {
    if (items.empty()) return;
    std::vector<CBlockPtr> pending;
    // Every item goes through the list, leaves too: freeing each item right after looking at it
    // keeps the walk in the cache (and suits the allocator better than freeing the leaves of a
    // list first and its blocks later).
    auto defer = [&pending](CBlockPtr& item) {
      try {
        pending.push_back(std::move(item));
      } catch (...) {  // no memory for the list: this subtree goes by recursion instead
      }
    };
    for (CBlockPtr& item : items) defer(item);
    items.clear();
    while (!pending.empty()) {
      CBlockPtr item = std::move(pending.back());
      pending.pop_back();
      if (item->RefCount() != 1) continue;  // still held elsewhere: only this share goes
      std::vector<CBlockPtr>* children = nullptr;
      if (item->IsBlock()) {
        children = &static_cast<CBlock&>(*item).mItems;
      } else if (item->IsFunc()) {
        children = &static_cast<CBlock_func&>(*item).mArgs;
      }
      if (children != nullptr) {
        for (CBlockPtr& child : *children) defer(child);
        children->clear();
      }
    }  // `item` is deleted here, with nothing left inside
  }

  // Copies the items of `from` (a block or function) into `to`, an empty item of the same type.
  static void CopyChildren(const CBlock_item& from, CBlock_item& to) {
    struct Job {
      const std::vector<CBlockPtr>* from;
      std::vector<CBlockPtr>* to;
    };
    std::vector<Job> pending;
    auto children = [](CBlock_item& item) -> std::vector<CBlockPtr>* {
      if (item.IsBlock()) return &static_cast<CBlock&>(item).mItems;
      return &static_cast<CBlock_func&>(item).mArgs;
    };
    pending.push_back({&Shell(from), children(to)});
    while (!pending.empty()) {
      const Job job = pending.back();
      pending.pop_back();
      job.to->reserve(job.from->size());
      for (const CBlockPtr& child : *job.from) {
        const CBlock_item& item = *child;
        if (typeid(item) == typeid(CBlock)) {
          const auto& block = static_cast<const CBlock&>(item);
          CBlock_ptr<CBlock> copy(new CBlock);
          copy->mName = block.mName;
          copy->mErrors = block.mErrors;
          job.to->push_back(CBlockPtr(copy));
          pending.push_back({&block.mItems, &copy->mItems});
        } else if (typeid(item) == typeid(CBlock_func)) {
          const auto& func = static_cast<const CBlock_func&>(item);
          CBlockFuncPtr copy(new CBlock_func);
          copy->mName = func.mName;
          job.to->push_back(CBlockPtr(copy));
          pending.push_back({&func.mArgs, &copy->mArgs});
        } else {
          job.to->push_back(CBlockPtr(item.Clone()));
        }
      }
    }
  }

  // The name and the count of a block or function equal; their items are compared by the
  // caller.
  static bool SameShell(const CBlock_item& a, const CBlock_item& b) {
    return SameToken(NameOf(a), NameOf(b)) && Shell(a).size() == Shell(b).size();
  }

  // `a` and `b` (a block or function, of one type) are equal item by item.
  static bool Equal(const CBlock_item& a, const CBlock_item& b) {
    std::vector<std::pair<const CBlock_item*, const CBlock_item*>> pending;
    if (!SameShell(a, b)) return false;
    pending.emplace_back(&a, &b);
    while (!pending.empty()) {
      const auto [x, y] = pending.back();
      pending.pop_back();
      const std::vector<CBlockPtr>& left = Shell(*x);
      const std::vector<CBlockPtr>& right = Shell(*y);
      for (std::size_t i = 0; i < left.size(); ++i) {
        const CBlock_item& l = *left[i];
        const CBlock_item& r = *right[i];
        if (typeid(l) != typeid(r)) return false;
        if (Children(l) != nullptr) {
          if (!SameShell(l, r)) return false;
          pending.emplace_back(&l, &r);
        } else if (!l.Equals(r)) {
          return false;
        }
      }
    }
    return true;
  }

  // The memory of `item` without its nested blocks and functions, which go to `pending`.
  static std::size_t OwnSize(const CBlock_item& item, bool includeSelf,
                             std::vector<const CBlock_item*>& pending) {
    std::size_t size = NameOf(item).SizeOf(false);
    const std::vector<CBlockPtr>* children = &Shell(item);
    size += children->capacity() * sizeof(CBlockPtr);
    if (item.IsBlock()) {
      size += static_cast<const CBlock&>(item).mErrors.size() * sizeof(XStreamioError);
      if (includeSelf) size += sizeof(CBlock);
    } else if (includeSelf) {
      size += sizeof(CBlock_func);
    }
    for (const CBlockPtr& child : *children) {
      if (Children(*child) != nullptr) {
        pending.push_back(child.get());
      } else {
        size += child->SizeOf(true);
      }
    }
    return size;
  }

  static std::size_t SizeOf(const CBlock_item& root, bool includeSelf) {
    std::vector<const CBlock_item*> pending;
    std::size_t size = OwnSize(root, includeSelf, pending);
    while (!pending.empty()) {
      const CBlock_item* item = pending.back();
      pending.pop_back();
      size += OwnSize(*item, true, pending);
    }
    return size;
  }

  static std::size_t OwnBinarySize(const CBlock_item& item, const CAbstract_ostream& stream,
                                   std::vector<const CBlock_item*>& pending) {
    const std::vector<CBlockPtr>& children = Shell(item);
    std::size_t size = 0;
    std::size_t perChild = 0;
    if (item.IsBlock()) {
      perChild = CToken(CToken::Eol).BinarySize(stream);
      size = CToken(CToken::Keyword, AString(u"$begin")).BinarySize(stream) +
             CToken(CToken::Keyword, AString(u"$end")).BinarySize(stream) +
             2 * NameOf(item).BinarySize(stream) + perChild;
    } else {
      size = NameOf(item).BinarySize(stream) + 2 * CToken(CToken::Symbol, u'(').BinarySize(stream);
      if (children.size() > 1) {
        size += (children.size() - 1) * CToken(CToken::Symbol, u',').BinarySize(stream);
      }
    }
    for (const CBlockPtr& child : children) {
      size += perChild;
      if (Children(*child) != nullptr) {
        pending.push_back(child.get());
      } else {
        size += child->BinarySize(stream);
      }
    }
    return size;
  }

  static std::size_t BinarySize(const CBlock_item& root, const CAbstract_ostream& stream) {
    std::vector<const CBlock_item*> pending;
    std::size_t size = OwnBinarySize(root, stream, pending);
    while (!pending.empty()) {
      const CBlock_item* item = pending.back();
      pending.pop_back();
      size += OwnBinarySize(*item, stream, pending);
    }
    return size;
  }

  // Writes `root` (a block or function) as CBlock::write and CBlock_func::write lay it out; with
  // `itemsOnly` a block's items alone, as CBlock::WriteItems does.
  static void Write(const CBlock_item& root, CAbstract_ostream& stream, bool itemsOnly) {
    struct Frame {
      const CBlock_item* item;
      const std::vector<CBlockPtr>* children;
      std::size_t next;
      bool block;
    };
    std::vector<Frame> frames;
    auto open = [&](const CBlock_item& item) {
      const bool block = item.IsBlock();
      if (block) {
        if (!(itemsOnly && frames.empty())) stream.BeginBlock(NameOf(item));
      } else {
        WriteName(NameOf(item), stream);
        stream.WriteSymbol(u'(');
      }
      frames.push_back({&item, &Shell(item), 0, block});
    };
    open(root);
    while (!frames.empty()) {
      Frame& frame = frames.back();
      if (frame.next == frame.children->size()) {
        const Frame done = frame;
        frames.pop_back();
        if (done.block) {
          if (!(itemsOnly && frames.empty())) stream.EndBlock(NameOf(*done.item));
        } else {
          stream.WriteSymbol(u')');
        }
        if (!frames.empty() && frames.back().block) stream.NewLine();
        continue;
      }
      const std::size_t index = frame.next++;
      if (!frame.block && index > 0) {
        stream.WriteSymbol(u',');
        stream.WriteBlank();
      }
      const CBlock_item& child = *(*frame.children)[index];
      const bool parentIsBlock = frame.block;  // `frame` may move when a frame is pushed
      if (Children(child) != nullptr) {
        open(child);
      } else {
        child.write(stream);
        if (parentIsBlock) stream.NewLine();
      }
    }
  }

  // The first scalar of a function: down the first arguments of nested functions.
  template <class T>
  static bool QueryFirst(const CBlock_func& func, T& value) {
    if (func.mArgs.empty()) return false;
    const CBlock_item* item = func.mArgs.front().get();
    while (typeid(*item) == typeid(CBlock_func)) {
      const auto& args = static_cast<const CBlock_func*>(item)->mArgs;
      if (args.empty()) return false;
      item = args.front().get();
    }
    return item->Query(value);
  }
};

namespace {

// One function argument: a value, or a named value, vector or function by the symbol after it.
CBlockPtr ReadArgument(CAbstract_istream& stream, const CToken& funcName) {
  CToken first = stream.Token();
  if (!CanStandAsValue(first)) {
    stream.Raise(E::kBadFunction,
                 u"an argument of " + Quoted(funcName) + u" is missing: found " + Describe(first));
  }
  RaiseUnterminated(stream);
  stream.NextToken();
  const AChar symbol = SymbolOf(stream.Token());
  if (symbol != u'=' && symbol != u'[' && symbol != u'(') {
    return CBlockPtr(new CBlock_value(std::move(first)));
  }
  if (!CanStandAsName(first)) {
    stream.Raise(E::kNotAName,
                 Describe(first) + u" cannot name an argument of " + Quoted(funcName));
  }
  if (symbol == u'=') {
    CBlock_ptr<CBlock_named_value> value(new CBlock_named_value);
    CBlockTree::TakeName(*value, std::move(first));
    value->ReadRest(stream);
    return value;
  }
  if (symbol == u'[') {
    CBlockVecPtr vec(new CBlock_vec);
    CBlockTree::TakeName(*vec, std::move(first));
    vec->ReadRest(stream);
    return vec;
  }
  CBlockFuncPtr func(new CBlock_func);
  CBlockTree::TakeName(*func, std::move(first));
  func->ReadRest(stream);
  return func;
}

// Collects the items of one block, or the arguments of one function, while they are read: the
// first ones on the stack, so that the list is allocated once and at its final size instead of
// growing item by item. Whatever was collected goes to the list also when reading throws.
template <std::size_t kInline>
class ItemCollector {
 public:
  explicit ItemCollector(std::vector<CBlockPtr>& target) : mTarget(target) {}
  ~ItemCollector() {
    try {
      Flush();
    } catch (...) {  // no memory for the list: the items go with the collector
    }
  }
  ItemCollector(const ItemCollector&) = delete;
  ItemCollector& operator=(const ItemCollector&) = delete;

  void Add(CBlockPtr item) {
    if (mCount < kInline) {
      mInline[mCount++] = std::move(item);
    } else {
      mSpill.push_back(std::move(item));
    }
  }
  void Flush() {
    if (mCount == 0) return;
    mTarget.reserve(mTarget.size() + mCount + mSpill.size());
    for (std::size_t i = 0; i < mCount; ++i) mTarget.push_back(std::move(mInline[i]));
    for (CBlockPtr& item : mSpill) mTarget.push_back(std::move(item));
    mCount = 0;
    mSpill.clear();
  }

 private:
  std::vector<CBlockPtr>& mTarget;
  CBlockPtr mInline[kInline];
  std::size_t mCount = 0;
  std::vector<CBlockPtr> mSpill;
};

// Reads a whole item of type T from `text` into `target`.
template <class T>
bool UnpackItem(const AString& text, T& target) {
  CToken_istream stream(text);
  stream.SkipEols();
  try {
    CBlockPtr item;
    item.read(stream);
    stream.SkipEols();
    const CBlock_item& read = *item;
    if (!stream.Token().IsEof() || typeid(read) != typeid(T)) return false;
    const T& typed = static_cast<const T&>(read);
    if constexpr (std::is_same_v<T, CBlock>) {
      if (!typed.CollectErrors().empty()) return false;
    }
    target = typed;
    return true;
  } catch (const XStreamioError&) {
    return false;
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// The item reader

CBlockPtr ReadBlockItem(CAbstract_istream& stream) {
  const CToken& current = stream.Token();
  if (!CanStandAsName(current)) {
    if (current.IsText()) stream.Raise(E::kNotAName, AString(u"an empty text cannot name an item"));
    stream.Raise(E::kNotAName, Describe(current) + u" cannot start an item");
  }
  if (stream.IsBeginBlock()) {
    NestingGuard guard(stream);
    if (!guard) {
      const int line = stream.Line();
      const int column = stream.Column();
      stream.SkipBlock();
      throw XStreamioError(
          E::kTooDeep,
          u"blocks and functions are nested deeper than " + Num(stream.MaxDepth()) + u" levels",
          line, column);
    }
    CBlock_ptr<CBlock> block(new CBlock);
    block->read(stream);
    return block;
  }
  RaiseUnterminated(stream);
  CToken first = current;  // the name, kept over the move to the next token
  stream.NextToken();
  switch (SymbolOf(stream.Token())) {
    case u'=': {
      CBlock_ptr<CBlock_named_value> value(new CBlock_named_value);
      CBlockTree::TakeName(*value, std::move(first));
      value->ReadRest(stream);
      return value;
    }
    case u'[': {
      CBlockVecPtr vec(new CBlock_vec);
      CBlockTree::TakeName(*vec, std::move(first));
      vec->ReadRest(stream);
      return vec;
    }
    case u'(': {
      CBlockFuncPtr func(new CBlock_func);
      CBlockTree::TakeName(*func, std::move(first));
      func->ReadRest(stream);
      return func;
    }
    default:
      stream.Raise(E::kNoItem, Quoted(first) + u" is followed by " + Describe(stream.Token()) +
                                   u", which starts no item (expected '=', '(' or '[')");
  }
}

// ---------------------------------------------------------------------------------------------
// CBlock_item

void CBlock_item::Name(const AString& name) {
  if (name.empty()) {
    mName.Clear();
  } else if (Grammar().IsPlainKeyword(name) && name != u"$begin" && name != u"$end") {
    mName = CToken(CToken::Keyword, name);
  } else {
    mName = CToken(CToken::SingleQuotedText, name);
  }
}

AString CBlock_item::Name() const { return TokenNameText(mName); }

#define WYCORE_DEFINE_QUERY(T) \
  bool CBlock_item::Query(T& /*value*/) const { return false; }
WYCORE_BLOCK_QUERY_TYPES(WYCORE_DEFINE_QUERY)
#undef WYCORE_DEFINE_QUERY
bool CBlock_item::Query(AChar* /*buffer*/) const { return false; }

// ---------------------------------------------------------------------------------------------
// CBlock_value

void CBlock_value::Name(const AString& /*name*/) { WY_CHECK(!"a plain value has no name"); }

void CBlock_value::SetNameToken(const CToken& /*name*/) { WY_CHECK(!"a plain value has no name"); }

std::size_t CBlock_value::SizeOf(bool includeSelf) const {
  return mName.SizeOf(false) + mValue.SizeOf(false) + (includeSelf ? sizeof(*this) : 0);
}

std::size_t CBlock_value::BinarySize(const CAbstract_ostream& stream) const {
  return mValue.BinarySize(stream);
}

bool CBlock_value::Unpack(const AString& text) {
  CToken_istream stream(text);
  stream.SkipEols();
  const CToken value = stream.Token();
  if (!CanStandAsValue(value) || stream.TokenUnterminated()) return false;
  stream.NextToken();
  stream.SkipEols();
  if (!stream.Token().IsEof()) return false;
  mValue = value;
  return true;
}

bool CBlock_value::Equals(const CBlock_item& other) const {
  if (typeid(other) != typeid(*this)) return false;
  const auto& o = static_cast<const CBlock_value&>(other);
  return SameToken(mName, o.mName) && SameToken(mValue, o.mValue);
}

#define WYCORE_DEFINE_QUERY(T) \
  bool CBlock_value::Query(T& value) const { return mValue.Query(value); }
WYCORE_BLOCK_QUERY_TYPES(WYCORE_DEFINE_QUERY)
#undef WYCORE_DEFINE_QUERY
bool CBlock_value::Query(AChar* buffer) const { return mValue.Query(buffer); }

void CBlock_value::read(CAbstract_istream& stream) {
  const CToken& value = stream.Token();
  if (!CanStandAsValue(value)) {
    stream.Raise(E::kBadValue, Describe(value) + u" cannot stand as a value");
  }
  RaiseUnterminated(stream);
  mValue = value;
  stream.NextToken();
}

void CBlock_value::write(CAbstract_ostream& stream) const { WriteValue(mValue, stream); }

// ---------------------------------------------------------------------------------------------
// CBlock_named_value

std::size_t CBlock_named_value::BinarySize(const CAbstract_ostream& stream) const {
  return mName.BinarySize(stream) + CToken(CToken::Symbol, u'=').BinarySize(stream) +
         mValue.BinarySize(stream);
}

bool CBlock_named_value::Unpack(const AString& text) { return UnpackItem(text, *this); }

void CBlock_named_value::read(CAbstract_istream& stream) {
  const CToken name = stream.Token();
  if (!CanStandAsName(name)) stream.Raise(E::kNotAName, Describe(name) + u" cannot name a value");
  RaiseUnterminated(stream);
  stream.NextToken();
  if (SymbolOf(stream.Token()) != u'=') {
    stream.Raise(E::kNoItem,
                 u"'=' expected after " + Quoted(name) + u", found " + Describe(stream.Token()));
  }
  mName = name;
  ReadRest(stream);
}

void CBlock_named_value::ReadRest(CAbstract_istream& stream) {
  stream.NextToken();  // '='
  const CToken& value = stream.Token();
  if (!CanStandAsValue(value)) {
    stream.Raise(E::kBadValue,
                 u"the value of " + Quoted(mName) + u" is missing: found " + Describe(value));
  }
  RaiseUnterminated(stream);
  mValue = value;
  stream.NextToken();
}

void CBlock_named_value::write(CAbstract_ostream& stream) const {
  WriteName(mName, stream);
  stream.WriteSymbol(u'=');
  WriteValue(mValue, stream);
}

// ---------------------------------------------------------------------------------------------
// CBlock_vec

std::size_t CBlock_vec::SizeOf(bool includeSelf) const {
  std::size_t size = mName.SizeOf(false) + mTokens.capacity() * sizeof(CToken);
  for (const CToken& token : mTokens) size += token.SizeOf(false);
  return size + (includeSelf ? sizeof(*this) : 0);
}

std::size_t CBlock_vec::BinarySize(const CAbstract_ostream& stream) const {
  const std::size_t n = mTokens.size();
  std::size_t size = mName.BinarySize(stream) +
                     CToken(CToken::Int, static_cast<double>(n)).BinarySize(stream) +
                     3 * CToken(CToken::Symbol, u'[').BinarySize(stream);  // '[', ':' and ']'
  for (const CToken& token : mTokens) size += token.BinarySize(stream);
  if (n > 1 && !stream.CompactVectors()) {
    size += (n - 1) * CToken(CToken::Symbol, u',').BinarySize(stream);
  }
  return size;
}

bool CBlock_vec::Unpack(const AString& text) { return UnpackItem(text, *this); }

bool CBlock_vec::Equals(const CBlock_item& other) const {
  if (typeid(other) != typeid(*this)) return false;
  const auto& o = static_cast<const CBlock_vec&>(other);
  if (!SameToken(mName, o.mName) || mTokens.size() != o.mTokens.size()) return false;
  for (std::size_t i = 0; i < mTokens.size(); ++i) {
    if (!SameToken(mTokens[i], o.mTokens[i])) return false;
  }
  return true;
}

#define WYCORE_DEFINE_QUERY(T) \
  bool CBlock_vec::Query(T& value) const { return !mTokens.empty() && mTokens[0].Query(value); }
WYCORE_BLOCK_QUERY_TYPES(WYCORE_DEFINE_QUERY)
#undef WYCORE_DEFINE_QUERY
bool CBlock_vec::Query(AChar* buffer) const { return !mTokens.empty() && mTokens[0].Query(buffer); }

const CToken& CBlock_vec::Item(unsigned int position) const {
  static const CToken empty;
  return position < mTokens.size() ? mTokens[position] : empty;
}

void CBlock_vec::read(CAbstract_istream& stream) {
  const CToken name = stream.Token();
  if (!CanStandAsName(name)) stream.Raise(E::kNotAName, Describe(name) + u" cannot name a vector");
  RaiseUnterminated(stream);
  stream.NextToken();
  if (SymbolOf(stream.Token()) != u'[') {
    stream.Raise(E::kNoItem,
                 u"'[' expected after " + Quoted(name) + u", found " + Describe(stream.Token()));
  }
  mName = name;
  ReadRest(stream);
}

void CBlock_vec::ReadRest(CAbstract_istream& stream) {
  mTokens.clear();
  stream.NextToken();  // '['
  const CToken count = stream.Token();
  const double n = count.Value();
  if (!count.IsNumber() || !count.IsUnsignedInt() || n != std::trunc(n)) {
    stream.Raise(E::kBadVector, u"the count of vector " + Quoted(mName) +
                                    u" must be a whole number: found " + Describe(count));
  }
  const auto expected = static_cast<std::size_t>(n);
  stream.NextToken();
  if (SymbolOf(stream.Token()) != u':') {
    stream.Raise(E::kBadVector, u"':' expected after the count of vector " + Quoted(mName) +
                                    u", found " + Describe(stream.Token()));
  }
  stream.NextToken();
  // The count comes from the input: reserve only a modest amount up front.
  mTokens.reserve(std::min<std::size_t>(expected, 4096));
  for (std::size_t i = 0; i < expected; ++i) {
    if (i > 0 && SymbolOf(stream.Token()) == u',') stream.NextToken();
    const CToken& token = stream.Token();
    if (SymbolOf(token) == u']') {
      stream.Raise(E::kBadVector,
                   u"vector " + Quoted(mName) + u" holds " + Num(static_cast<long long>(i)) +
                       u" tokens, fewer than its count " + Num(static_cast<long long>(expected)));
    }
    if (!CanStandAsValue(token)) {
      stream.Raise(E::kBadVector, Describe(token) + u" cannot stand in vector " + Quoted(mName));
    }
    RaiseUnterminated(stream);
    mTokens.push_back(token);
    stream.NextToken();
  }
  const CToken& end = stream.Token();
  if (SymbolOf(end) != u']') {
    if (CanStandAsValue(end) || SymbolOf(end) == u',') {
      stream.Raise(E::kBadVector, u"vector " + Quoted(mName) +
                                      u" holds more tokens than its count " +
                                      Num(static_cast<long long>(expected)));
    }
    stream.Raise(E::kBadVector,
                 u"']' expected to close vector " + Quoted(mName) + u", found " + Describe(end));
  }
  stream.NextToken();
}

void CBlock_vec::write(CAbstract_ostream& stream) const {
  WriteName(mName, stream);
  stream.WriteSymbol(u'[');
  const bool hex = stream.Hex(false);  // counts are always decimal
  stream.WriteUnsignedInt(static_cast<std::uint32_t>(mTokens.size()));
  stream.Hex(hex);
  stream.WriteSymbol(u':');
  const bool compact = stream.CompactVectors();
  for (std::size_t i = 0; i < mTokens.size(); ++i) {
    if (i > 0 && !compact) stream.WriteSymbol(u',');
    if (!compact) stream.WriteBlank();
    WriteValue(mTokens[i], stream);
  }
  stream.WriteSymbol(u']');
}

// ---------------------------------------------------------------------------------------------
// CBlock_func

CBlock_func::CBlock_func(const CBlock_func& other) : CBlock_item(other) {
  CBlockTree::CopyChildren(other, *this);
}

CBlock_func::~CBlock_func() { CBlockTree::Release(mArgs); }

CBlock_func& CBlock_func::operator=(const CBlock_func& other) {
  if (this != &other) {
    CBlock_func copy(other);
    *this = std::move(copy);
  }
  return *this;
}

std::size_t CBlock_func::SizeOf(bool includeSelf) const {
  return CBlockTree::SizeOf(*this, includeSelf);
}

std::size_t CBlock_func::BinarySize(const CAbstract_ostream& stream) const {
  return CBlockTree::BinarySize(*this, stream);
}

bool CBlock_func::Unpack(const AString& text) { return UnpackItem(text, *this); }

bool CBlock_func::Equals(const CBlock_item& other) const {
  if (typeid(other) != typeid(*this)) return false;
  return CBlockTree::Equal(*this, other);
}

#define WYCORE_DEFINE_QUERY(T) \
  bool CBlock_func::Query(T& value) const { return CBlockTree::QueryFirst(*this, value); }
WYCORE_BLOCK_QUERY_TYPES(WYCORE_DEFINE_QUERY)
#undef WYCORE_DEFINE_QUERY
bool CBlock_func::Query(AChar* buffer) const { return CBlockTree::QueryFirst(*this, buffer); }

CBlock_func& CBlock_func::operator<<(const CBlockPtr& arg) {
  if (WY_CHECK(arg && !arg->IsBlock())) mArgs.push_back(arg);
  return *this;
}

CBlock_func& CBlock_func::operator<<(const CBlock_value& arg) {
  mArgs.emplace_back(arg.Clone());
  return *this;
}

CBlock_func& CBlock_func::operator<<(const CBlock_vec& arg) {
  mArgs.emplace_back(arg.Clone());
  return *this;
}

CBlock_func& CBlock_func::operator<<(const CBlock_func& arg) {
  mArgs.emplace_back(arg.Clone());
  return *this;
}

bool CBlock_func::QueryUnamedValues(const_iterator& it, CBlockFuncPtr& func) const {
  for (; it != mArgs.end(); ++it) {
    if ((*it)->IsFunc()) {
      func = CBlockFuncPtr(static_cast<CBlock_func*>(it->get()));
      ++it;
      return true;
    }
  }
  return false;
}

void CBlock_func::read(CAbstract_istream& stream) {
  const CToken name = stream.Token();
  if (!CanStandAsName(name))
    stream.Raise(E::kNotAName, Describe(name) + u" cannot name a function");
  RaiseUnterminated(stream);
  stream.NextToken();
  if (SymbolOf(stream.Token()) != u'(') {
    stream.Raise(E::kNoItem,
                 u"'(' expected after " + Quoted(name) + u", found " + Describe(stream.Token()));
  }
  mName = name;
  ReadRest(stream);
}

void CBlock_func::ReadRest(CAbstract_istream& stream) {
  mArgs.clear();
  NestingGuard guard(stream);
  if (!guard) RaiseTooDeep(stream);
  stream.NextToken();  // '('
  if (SymbolOf(stream.Token()) == u')') {
    stream.NextToken();
    return;
  }
  ItemCollector<8> args(mArgs);
  for (;;) {
    args.Add(ReadArgument(stream, mName));
    const AChar symbol = SymbolOf(stream.Token());
    if (symbol == u',') {
      stream.NextToken();
    } else if (symbol == u')') {
      stream.NextToken();
      args.Flush();
      return;
    } else {
      stream.Raise(E::kBadFunction, u"',' or ')' expected in the arguments of " + Quoted(mName) +
                                        u", found " + Describe(stream.Token()));
    }
  }
}

void CBlock_func::write(CAbstract_ostream& stream) const {
  CBlockTree::Write(*this, stream, false);
}

// ---------------------------------------------------------------------------------------------
// CBlock

CBlock::CBlock(const CBlock& other) : CBlock_item(other), mErrors(other.mErrors) {
  CBlockTree::CopyChildren(other, *this);
}

CBlock::~CBlock() { CBlockTree::Release(mItems); }

CBlock& CBlock::operator=(const CBlock& other) {
  if (this != &other) {
    CBlock copy(other);
    *this = std::move(copy);
  }
  return *this;
}

CBlock::CBlock(CBlock&& other) noexcept
    : CBlock_item(other), mItems(std::move(other.mItems)), mErrors(std::move(other.mErrors)) {
  other.mCursor = 0;
}

CBlock& CBlock::operator=(CBlock&& other) noexcept {
  if (this != &other) {
    mName = other.mName;
    mItems = std::move(other.mItems);
    mErrors = std::move(other.mErrors);
    mCursor = 0;
    mFound = false;
    other.mCursor = 0;
  }
  return *this;
}

void CBlock::Name(const AString& name) {
  if (name.empty()) {
    mName.Clear();
  } else {
    mName = CToken(CToken::SingleQuotedText, name);
  }
}

std::size_t CBlock::SizeOf(bool includeSelf) const {
  return CBlockTree::SizeOf(*this, includeSelf);
}

std::size_t CBlock::BinarySize(const CAbstract_ostream& stream) const {
  return CBlockTree::BinarySize(*this, stream);
}

void CBlock::Clear() {
  mItems.clear();
  mErrors.clear();
  mCursor = 0;
  mFound = false;
}

bool CBlock::Unpack(const AString& text) { return UnpackItem(text, *this); }

bool CBlock::Equals(const CBlock_item& other) const {
  if (typeid(other) != typeid(*this)) return false;
  return CBlockTree::Equal(*this, other);
}

const CBlock_item* CBlock::Find(const AString& name) const {
  for (const CBlockPtr& item : mItems) {
    if (NameMatches(item->NameToken(), name)) return item.get();
  }
  return nullptr;
}

const CBlock* CBlock::FindBlock(const AString& name) const {
  for (const CBlockPtr& item : mItems) {
    if (item->IsBlock() && NameMatches(item->NameToken(), name)) {
      return static_cast<const CBlock*>(item.get());
    }
  }
  return nullptr;
}

CBlock& CBlock::operator<<(const CBlock& block) {
  mItems.emplace_back(block.Clone());
  return *this;
}

CBlock& CBlock::operator<<(const CBlock_named_value& value) {
  mItems.emplace_back(value.Clone());
  return *this;
}

CBlock& CBlock::operator<<(const CBlock_vec& vec) {
  mItems.emplace_back(vec.Clone());
  return *this;
}

CBlock& CBlock::operator<<(const CBlock_func& func) {
  mItems.emplace_back(func.Clone());
  return *this;
}

CBlock& CBlock::operator<<(const CBlockPtr& item) {
  if (WY_CHECK(item && !item->IsValue()) && WY_CHECK(item.get() != this)) mItems.push_back(item);
  return *this;
}

CBlock& CBlock::operator<<(const CStreamio_item_object& object) {
  object.WriteToBlock(*this);
  return *this;
}

template <class Pred>
const CBlock_item* CBlock::Extract(bool named, Pred pred) const {
  const std::size_t n = mItems.size();
  const std::size_t start = std::min(mCursor, n);
  const std::size_t span = named ? n : n - start;
  for (std::size_t k = 0; k < span; ++k) {
    const std::size_t i = (start + k) % n;
    if (pred(*mItems[i])) {
      mCursor = i + 1;
      mFound = true;
      return mItems[i].get();
    }
  }
  mFound = false;
  return nullptr;
}

const CBlock& CBlock::operator>>(CBlock& block) const {
  const bool named = block.IsNamed();
  const AString name = block.Name();
  const CBlock_item* found = Extract(named, [&](const CBlock_item& item) {
    return item.IsBlock() && (!named || NameMatches(item.NameToken(), name));
  });
  if (found != nullptr && found != &block) block = static_cast<const CBlock&>(*found);
  return *this;
}

const CBlock& CBlock::operator>>(CBlock_named_value& value) const {
  const bool named = value.IsNamed();
  const AString name = value.Name();
  const CBlock_item* found = Extract(named, [&](const CBlock_item& item) {
    return item.IsNamedValue() && (!named || NameMatches(item.NameToken(), name));
  });
  if (found != nullptr) value = static_cast<const CBlock_named_value&>(*found);
  return *this;
}

const CBlock& CBlock::operator>>(CBlock_vec& vec) const {
  const bool named = vec.IsNamed();
  const AString name = vec.Name();
  const CBlock_item* found = Extract(named, [&](const CBlock_item& item) {
    return item.IsVec() && (!named || NameMatches(item.NameToken(), name));
  });
  if (found != nullptr) vec = static_cast<const CBlock_vec&>(*found);
  return *this;
}

const CBlock& CBlock::operator>>(CBlock_func& func) const {
  const bool named = func.IsNamed();
  const AString name = func.Name();
  const CBlock_item* found = Extract(named, [&](const CBlock_item& item) {
    return item.IsFunc() && (!named || NameMatches(item.NameToken(), name));
  });
  if (found != nullptr) func = static_cast<const CBlock_func&>(*found);
  return *this;
}

const CBlock& CBlock::operator>>(CBlockPtr& item) const {
  const bool named = item && item->IsNamed();
  const AString name = named ? item->Name() : AString();
  const CBlock_item* found = Extract(named, [&](const CBlock_item& candidate) {
    return !named || NameMatches(candidate.NameToken(), name);
  });
  if (found != nullptr) item = CBlockPtr(const_cast<CBlock_item*>(found));
  return *this;
}

const CBlock& CBlock::operator>>(CStreamio_item_object& object) const {
  mFound = object.ReadFromBlock(*this);
  return *this;
}

bool CBlock::Error(bool const& clear) {
  bool any = false;
  std::vector<CBlock*> pending{this};
  while (!pending.empty()) {
    CBlock* block = pending.back();
    pending.pop_back();
    any |= !block->mErrors.empty();
    if (clear) block->mErrors.clear();
    for (const CBlockPtr& item : block->mItems) {
      if (item->IsBlock()) pending.push_back(static_cast<CBlock*>(item.get()));
    }
  }
  return any;
}

bool CBlock::Error(std::list<AString>& messages, bool const& clear) {
  const std::vector<XStreamioError> errors = CollectErrors();
  for (const XStreamioError& error : errors) messages.push_back(error.Text());
  if (clear) Error(true);
  return !errors.empty();
}

std::vector<XStreamioError> CBlock::CollectErrors() const {
  std::vector<XStreamioError> errors;
  std::vector<const CBlock*> pending{this};
  while (!pending.empty()) {
    const CBlock* block = pending.back();
    pending.pop_back();
    errors.insert(errors.end(), block->mErrors.begin(), block->mErrors.end());
    for (const CBlockPtr& item : block->mItems) {
      if (item->IsBlock()) pending.push_back(static_cast<const CBlock*>(item.get()));
    }
  }
  std::stable_sort(errors.begin(), errors.end(), [](const auto& a, const auto& b) {
    return a.Line() != b.Line() ? a.Line() < b.Line() : a.Column() < b.Column();
  });
  return errors;
}

void CBlock::RecordStreamError(const CAbstract_istream& stream, const AString& message) {
  mErrors.emplace_back(E::kStreamFailed, message, stream.Line(), stream.Column());
}

void CBlock::read(CAbstract_istream& stream) {
  Clear();
  if (stream.Fail()) {
    RecordStreamError(stream, u"the stream failed before the block: " + stream.FailMessage());
    return;
  }
  if (!stream.IsBeginBlock()) {
    RecordStreamError(stream, u"$begin expected, found " + Describe(stream.Token()));
    return;
  }
  const int beginLine = stream.Line();
  if (!stream.OpenBlock(mName)) {
    RecordStreamError(stream, stream.FailMessage());
    stream.ClearError();
  }
  ReadBody(stream, false);
  const int line = stream.Line();
  const int column = stream.Column();
  if (!stream.CloseBlock(mName) || stream.Fail()) {
    mErrors.emplace_back(
        E::kStreamFailed,
        stream.FailMessage() + u" (the block begins on line " + Num(beginLine) + u")", line,
        column);
    stream.ClearError();
  }
}

void CBlock::ReadItems(CAbstract_istream& stream) {
  Clear();
  ReadBody(stream, true);
}

void CBlock::ReadBody(CAbstract_istream& stream, bool topLevel) {
  ItemCollector<16> items(mItems);
  for (;;) {
    stream.SkipEols();
    if (stream.Fail() || stream.Token().IsEof()) break;
    if (stream.IsEndBlock()) {
      if (!topLevel) break;
      RecordStreamError(stream, AString(u"$end without a matching $begin"));
      stream.SkipToResumePoint();
      continue;
    }
    try {
      CBlockPtr item;
      item.read(stream);
      items.Add(std::move(item));
    } catch (const XStreamioError& error) {
      mErrors.push_back(error);
      stream.SkipToResumePoint();
      stream.ClearError();
    }
  }
  items.Flush();
}

void CBlock::write(CAbstract_ostream& stream) const { CBlockTree::Write(*this, stream, false); }

void CBlock::WriteItems(CAbstract_ostream& stream) const { CBlockTree::Write(*this, stream, true); }

}  // namespace io
