// SPDX-License-Identifier: Apache-2.0
//
// StorageFile.cpp - io::CStorageFile: POSIX file access around the text streams.
#include "wycore/io/StorageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "LocalCalls.h"
#include "wycore/core/Utf.h"
#include "wycore/io/TextStream.h"

namespace io {

namespace {

std::string NativePath(const AString& path) { return wycore::Utf16ToUtf8(path); }

void SetError(AString* ioError, const AString& path, const char* what, int err) {
  if (ioError == nullptr) return;
  *ioError = path + u": " + AString(wycore::Utf8ToUtf16(what)) + u": " +
             AString(wycore::Utf8ToUtf16(std::strerror(err)));
}

bool WriteAll(int fd, const std::string& bytes) {
  const char* p = bytes.data();
  std::size_t left = bytes.size();
  while (left > 0) {
    const ssize_t n = ::write(fd, p, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    p += n;
    left -= static_cast<std::size_t>(n);
  }
  return true;
}

}  // namespace

namespace {

// Appends the UTF-8 `bytes` to `text`, decoded. Storage text is nearly all ASCII: runs of ASCII
// bytes are widened in bulk, eight at a time, and only the bytes from 0x80 up go through the
// general decoder. Splitting the input at ASCII bytes changes nothing, since no UTF-8 sequence,
// valid or not, takes an ASCII byte (the decoder gives U+FFFD for a sequence that an ASCII byte
// cuts short, in either case); the file reader relies on that to decode a file in pieces. Every
// byte yields at most one UTF-16 unit.
void AppendUtf8(std::string_view bytes, AString& text) {
  const std::size_t start = text.size();
  text.resize(start + bytes.size());
  AChar* out = text.data() + start;
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* const end = in + bytes.size();
  while (in < end) {
    while (end - in >= 8) {
      std::uint64_t word;
      std::memcpy(&word, in, 8);
      if ((word & 0x8080808080808080ull) != 0) break;
      for (int i = 0; i < 8; ++i) out[i] = in[i];
      in += 8;
      out += 8;
    }
    while (in < end && *in < 0x80) *out++ = *in++;
    if (in == end) break;
    const auto* const run = in;
    while (in < end && *in >= 0x80) ++in;
    const std::u16string wide = wycore::Utf8ToUtf16(
        std::string_view(reinterpret_cast<const char*>(run), static_cast<std::size_t>(in - run)));
    std::memcpy(out, wide.data(), wide.size() * sizeof(AChar));
    out += wide.size();
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
}

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

// A UTF-8 file read and decoded a piece at a time, for CToken_textstreambuf::SetInputSource:
// the reader then holds about one piece of the file instead of all of it (and of its decoded
// text, twice its size). A piece ends after its last ASCII byte; the bytes after it wait for the
// next piece, so that no sequence is cut.
class Utf8FileSource {
 public:
  explicit Utf8FileSource(int fd) : mFd(fd) {}

  // Appends the next piece to `text`; false when the file has no more.
  bool Next(AString& text) {
    constexpr std::size_t kPiece = 1 << 20;
    for (;;) {
      if (!mEnd) {
        const std::size_t old = mBytes.size();
        mBytes.resize(old + kPiece);
        const ssize_t n = ::read(mFd, mBytes.data() + old, kPiece);
        mBytes.resize(old + static_cast<std::size_t>(n > 0 ? n : 0));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) mError = errno;
        if (n <= 0) mEnd = true;
      }
      if (mStart) {
        if (mBytes.size() < kByteOrderMark.size() && !mEnd) continue;
        if (std::string_view(mBytes).substr(0, 3) == kByteOrderMark) mBytes.erase(0, 3);
        mStart = false;
      }
      if (mEnd) {
        if (mBytes.empty()) return false;
        AppendUtf8(mBytes, text);
        mBytes.clear();
        return true;
      }
      std::size_t cut = mBytes.size();
      while (cut > 0 && static_cast<unsigned char>(mBytes[cut - 1]) >= 0x80) --cut;
      if (cut == 0) continue;  // no ASCII byte yet: read on
      AppendUtf8(std::string_view(mBytes).substr(0, cut), text);
      mBytes.erase(0, cut);
      return true;
    }
  }
  int Error() const { return mError; }

 private:
  int mFd;
  std::string mBytes;  // read and not yet decoded
  bool mStart = true;
  bool mEnd = false;
  int mError = 0;
};

}  // namespace

AString CStorageFile::Decode(const std::string& bytes, i18n::TEncoding encoding) {
  if (encoding != i18n::kUtf8 && encoding != i18n::kSystemEncoding) {
    return AString(encoding, bytes.data(), static_cast<std::int64_t>(bytes.size()));
  }
  std::string_view view(bytes);
  if (view.substr(0, 3) == kByteOrderMark) view.remove_prefix(3);
  AString text;
  AppendUtf8(view, text);
  return text;
}

bool CStorageFile::Read(const AString& path, CBlock& root, AString* ioError,
                        i18n::TEncoding encoding) {
  const std::string native = NativePath(path);
  const int fd = ::open(native.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    SetError(ioError, path, "cannot open", errno);
    return false;
  }
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    const int err = errno != 0 && !S_ISDIR(info.st_mode) ? errno : EISDIR;
    ::close(fd);
    SetError(ioError, path, "not a regular file", err);
    return false;
  }
  if (encoding == i18n::kUtf8 || encoding == i18n::kSystemEncoding) {
    // Read as the lexer goes: neither the file's bytes nor its decoded text are ever held whole.
    Utf8FileSource source(fd);
    CBlock items;
    {
      CToken_istream stream;
      stream.SetInputSource([&source](AString& text) { return source.Next(text); });
      items.ReadItems(stream);
    }
    ::close(fd);
    if (source.Error() != 0) {
      SetError(ioError, path, "cannot read", source.Error());
      return false;
    }
    const CToken name = root.NameToken();
    root = std::move(items);
    root.SetNameToken(name);
    return true;
  }
  std::string bytes;
  bytes.reserve(static_cast<std::size_t>(info.st_size));
  std::vector<char> chunk(1 << 16);
  for (;;) {
    const ssize_t n = ::read(fd, chunk.data(), chunk.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      const int err = errno;
      ::close(fd);
      SetError(ioError, path, "cannot read", err);
      return false;
    }
    if (n == 0) break;
    bytes.append(chunk.data(), static_cast<std::size_t>(n));
  }
  ::close(fd);
  // The bytes go as soon as they are decoded, so that they and the tree are never held at once.
  AString text = Decode(bytes, encoding);
  std::string().swap(bytes);
  ReadText(std::move(text), root);
  return true;
}

void CStorageFile::ReadText(const AString& text, CBlock& root) { ReadText(AString(text), root); }

void CStorageFile::ReadText(AString&& text, CBlock& root) {
  CToken_istream stream(std::move(text));
  root.ReadItems(stream);
}

std::string CStorageFile::WriteText(const CBlock& root, i18n::TEncoding encoding) {
  CToken_ostream stream;
  stream.Buffer().SetEncoding(encoding);
  root.WriteItems(stream);
  return stream.Buffer().TakeOutputBytes();
}

bool CStorageFile::Write(const AString& path, const CBlock& root, AString* ioError,
                         i18n::TEncoding encoding) {
  return WriteBytes(path, WriteText(root, encoding), ioError);
}

bool CStorageFile::WriteBytes(const AString& path, const std::string& bytes, AString* ioError) {
  const std::string native = NativePath(path);
  const std::size_t slash = native.find_last_of('/');
  const std::string dir =
      slash == std::string::npos ? std::string(".") : native.substr(0, slash + 1);
  const std::string base = slash == std::string::npos ? native : native.substr(slash + 1);
  std::string temp = (slash == std::string::npos ? std::string() : dir) + "." + base + ".XXXXXX";
  std::vector<char> name(temp.begin(), temp.end());
  name.push_back('\0');
  const int fd = ::mkostemp(name.data(), O_CLOEXEC);
  if (fd < 0) {
    SetError(ioError, path, "cannot create a temporary file beside it", errno);
    return false;
  }
  temp.assign(name.data());
  // The new file keeps the permissions of the one it replaces (mkostemp makes it 0600).
  struct stat old {};
  const mode_t mode = ::stat(native.c_str(), &old) == 0 ? (old.st_mode & 07777) : 0644;
  bool ok = WriteAll(fd, bytes);
  int err = errno;
  if (ok && ::fchmod(fd, mode) != 0) {
    ok = false;
    err = errno;
  }
  if (ok && ::fsync(fd) != 0) {
    ok = false;
    err = errno;
  }
  if (::close(fd) != 0 && ok) {
    ok = false;
    err = errno;
  }
  if (ok && ::rename(temp.c_str(), native.c_str()) != 0) {
    ok = false;
    err = errno;
  }
  if (!ok) {
    ::unlink(temp.c_str());
    SetError(ioError, path, "cannot write", err);
    return false;
  }
  return true;
}

}  // namespace io
