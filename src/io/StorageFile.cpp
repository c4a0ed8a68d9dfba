// SPDX-License-Identifier: Apache-2.0
//
// StorageFile.cpp - io::CStorageFile: POSIX file access around the text streams.
#include "wycore/io/StorageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

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

AString CStorageFile::Decode(const std::string& bytes, i18n::TEncoding encoding) {
  if (encoding == i18n::kUtf8 || encoding == i18n::kSystemEncoding) {
    std::string_view view(bytes);
    if (view.substr(0, 3) == "\xef\xbb\xbf") view.remove_prefix(3);
    return AString(wycore::Utf8ToUtf16(view));
  }
  return AString(encoding, bytes.data(), static_cast<std::int64_t>(bytes.size()));
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
  ReadText(Decode(bytes, encoding), root);
  return true;
}

void CStorageFile::ReadText(const AString& text, CBlock& root) {
  CToken_istream stream(text);
  root.ReadItems(stream);
}

std::string CStorageFile::WriteText(const CBlock& root, i18n::TEncoding encoding) {
  CToken_ostream stream;
  stream.Buffer().SetEncoding(encoding);
  root.WriteItems(stream);
  return stream.Bytes();
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
