// SPDX-License-Identifier: Apache-2.0
//
// Capture.h - scoped capture of checks, debug lines and posted messages for tests.
//
// Each capture installs its handler on construction and restores the previous one on
// destruction, so captures nest and never leak into other tests.
#pragma once

#include <string>
#include <vector>

#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/core/Messages.h"

namespace wycore::test {

class CheckCapture {
 public:
  CheckCapture();
  ~CheckCapture();
  CheckCapture(const CheckCapture&) = delete;
  CheckCapture& operator=(const CheckCapture&) = delete;

  const std::vector<CheckReport>& Reports() const { return mReports; }
  // True when a check with exactly this text fired.
  bool Fired(const std::string& text) const;
  bool None() const { return mReports.empty(); }
  void Clear() { mReports.clear(); }

 private:
  std::vector<CheckReport> mReports;
  CheckHandler mPrevious;
};

class DebugCapture {
 public:
  DebugCapture();
  ~DebugCapture();
  DebugCapture(const DebugCapture&) = delete;
  DebugCapture& operator=(const DebugCapture&) = delete;

  const std::vector<std::u16string>& Lines() const { return mLines; }
  bool Contains(const std::u16string& line) const;
  void Clear() { mLines.clear(); }

 private:
  std::vector<std::u16string> mLines;
  DebugSink mPrevious;
};

class MessageCapture {
 public:
  MessageCapture();
  ~MessageCapture();
  MessageCapture(const MessageCapture&) = delete;
  MessageCapture& operator=(const MessageCapture&) = delete;

  const std::vector<PostedMessage>& Messages() const { return mMessages; }
  bool Posted(int code) const;
  void Clear() { mMessages.clear(); }

 private:
  std::vector<PostedMessage> mMessages;
  MessageHandler mPrevious;
};

}  // namespace wycore::test
