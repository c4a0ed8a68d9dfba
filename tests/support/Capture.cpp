// SPDX-License-Identifier: Apache-2.0
//
// Capture.cpp - scoped capture of checks, debug lines and posted messages for tests.
#include "support/Capture.h"

#include <algorithm>

namespace wycore::test {

CheckCapture::CheckCapture()
    : mPrevious(SetCheckHandler([this](const CheckReport& r) { mReports.push_back(r); })) {}
CheckCapture::~CheckCapture() { SetCheckHandler(std::move(mPrevious)); }

bool CheckCapture::Fired(const std::string& text) const {
  return std::any_of(mReports.begin(), mReports.end(),
                     [&](const CheckReport& r) { return r.text == text; });
}

DebugCapture::DebugCapture()
    : mPrevious(SetDebugSink([this](std::u16string_view line) { mLines.emplace_back(line); })) {}
DebugCapture::~DebugCapture() { SetDebugSink(std::move(mPrevious)); }

bool DebugCapture::Contains(const std::u16string& line) const {
  return std::find(mLines.begin(), mLines.end(), line) != mLines.end();
}

MessageCapture::MessageCapture()
    : mPrevious(SetMessageHandler([this](const PostedMessage& m) { mMessages.push_back(m); })) {}
MessageCapture::~MessageCapture() { SetMessageHandler(std::move(mPrevious)); }

bool MessageCapture::Posted(int code) const {
  return std::any_of(mMessages.begin(), mMessages.end(),
                     [code](const PostedMessage& m) { return m.code == code; });
}

}  // namespace wycore::test
