// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <exception>
#include <utility>

namespace folidex {

/// A failure as every procedure of the program reports it: a number, words for the user and
/// where it came from. Thrown by value, caught by the procedure's trap (error_trap.h).
class Error : public std::exception {
public:
    Error(int error_number, QString error_description, QString error_source = {})
        : number(error_number), description(std::move(error_description)),
          source(std::move(error_source)) {}

    const char* what() const noexcept override { return "folidex::Error"; }

    int number;
    QString description;
    QString source;
};

/// The number that a trap raises after its report, and the words that go with it.
inline constexpr int kPassedOn = 65535;
inline constexpr const char* kPassedOnText = "Application-defined or object-defined error";

/// Numbers that the program shares with the platform it was first written for.
inline constexpr int kInvalidArgument = 5;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kSubscriptOutOfRange = 9;
inline constexpr int kInternalError = 51;
inline constexpr int kBadFileName = 52;
inline constexpr int kFileNotFound = 53;
inline constexpr int kFileExists = 58;
inline constexpr int kDiskFull = 61;
inline constexpr int kPermissionDenied = 70;
inline constexpr int kPathNotFound = 76;

} // namespace folidex
