// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_api.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

namespace folidex::test {

/// What one call of sane_start and the reads after it give.
struct ScriptedFrame {
    SANE_Status start = SANE_STATUS_GOOD;
    SANE_Parameters parameters{};
    QByteArray bytes;
    SANE_Status ending = SANE_STATUS_EOF; ///< what the read after the last byte gives
    int portion = 0;                      ///< the most bytes one read gives; 0: as many as asked
};

/// A frame of the given rows with 8-bit grey samples.
ScriptedFrame gray_frame(int width, int rows, char sample = '\x40');
/// A start that fails.
ScriptedFrame failing_start(SANE_Status status);

struct ScriptedOption {
    QByteArray name;
    SANE_Value_Type type = SANE_TYPE_STRING;
    SANE_Unit unit = SANE_UNIT_NONE;
    QList<QByteArray> choices;
    QByteArray value; ///< as SANE holds it: bytes of a word, or a text
};
ScriptedOption text_option(const QByteArray& name, const QList<QByteArray>& choices);
ScriptedOption number_option(const QByteArray& name, SANE_Unit unit, int value);
ScriptedOption switch_option(const QByteArray& name);

struct ScriptedDevice {
    QByteArray name = "script:0";
    QByteArray vendor = "Acme";
    QByteArray model = "Scan";
    QByteArray type = "multi-function peripheral";
    bool local = true;
    SANE_Status open = SANE_STATUS_GOOD;
    std::deque<ScriptedOption> options;
    std::deque<ScriptedFrame> feeder; ///< what the starts give while the source is a feeder
    std::deque<ScriptedFrame> glass;  ///< and else
};

/// A scanner that plays a script, as a table of SANE calls. A call can be made to hang; what
/// was called stands in calls(). Any thread; the table keeps the script alive.
class ScriptedSane {
public:
    ScriptedSane();
    ~ScriptedSane();

    SaneApi api() const;
    /// Before the first call, or while no call runs.
    ScriptedDevice& add(const ScriptedDevice& device = {});

    SANE_Status init = SANE_STATUS_GOOD;
    SANE_Status listing = SANE_STATUS_GOOD;

    /// Makes a call ("start", "read", "open", "list local", "list all", "cancel") wait until
    /// release(); one that heeds goes on at sane_cancel, too.
    void hang(const QString& call, bool heeds_cancel = false);
    void release();
    /// True while a call hangs.
    bool hanging() const;

    QStringList calls() const;
    /// Text value of an option of the first device.
    QByteArray option(const QByteArray& name) const;

    struct Script;

private:
    std::shared_ptr<Script> script_;
};

} // namespace folidex::test
