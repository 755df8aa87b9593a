// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_api.h"

#include <QByteArray>
#include <QList>
#include <optional>

namespace folidex {

/// The options of an open device, found by name afresh each time: setting one may change what
/// the others offer. Options that are switched off count as absent. Scanner's thread.
class SaneOptions {
public:
    SaneOptions(const SaneApi& api, SANE_Handle handle) : api_(api), handle_(handle) {}

    /// What a text option can be set to; empty when there is no such option to set.
    QList<QByteArray> choices(const char* name) const;
    /// A number, fixed-point ones converted.
    std::optional<double> number(const char* name, SANE_Unit unit) const;
    SANE_Status set_text(const char* name, const QByteArray& value) const;
    /// Switches a Boolean option on, if there is one to set.
    SANE_Status switch_on(const char* name) const;

private:
    struct Found {
        SANE_Int index;
        const SANE_Option_Descriptor* descriptor;
    };
    std::optional<Found> find(const char* name) const;
    std::optional<QByteArray> value(const Found& option) const;

    const SaneApi& api_;
    SANE_Handle handle_;
};

/// Which of a device's sources is its document feeder, reading both sides when wanted and
/// offered; empty when it has none.
QByteArray feeder_source(const QList<QByteArray>& sources, bool both_sides);
/// Which of a device's sources is its glass; empty when it has none.
QByteArray glass_source(const QList<QByteArray>& sources);

/// Pixels an inch each way.
struct SaneResolution {
    double x = 0;
    double y = 0;
};

/// What the options tell of a page's size. Many drivers refuse to be asked once a scan runs, so
/// it is read before the start; the pixels of a line, which only the start tells, come later.
struct SaneScale {
    SaneResolution told; ///< 0 where the device does not tell
    double width = 0;    ///< of the scan area in millimetres; 0 when there is none

    /// What the device told, else what its scan area gives, else kAssumedResolution.
    SaneResolution resolution(int pixels_per_line) const;
};
inline constexpr double kAssumedResolution = 300;
SaneScale sane_scale(const SaneOptions& options);

} // namespace folidex
