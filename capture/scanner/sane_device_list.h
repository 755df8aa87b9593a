// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_session.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace folidex {

/// A device as SANE lists it.
struct SaneSource {
    QByteArray device;
    QString vendor;
    QString model;
    QString type;
};

/// The names that users see, "<vendor> <model>"; sources that would read alike carry their
/// device name in brackets too.
QStringList source_names(const QList<SaneSource>& sources);

/// The search for devices: the ones at this computer first, then those in the network, which
/// join when they answer. A source keeps its index. Shared with the scanner's thread.
class SaneDeviceList {
public:
    /// Begins a search; the list lives as long as the search does.
    static std::shared_ptr<SaneDeviceList> search(SaneSession& session);

    /// Waits until the local devices are known, at most the time given.
    void wait_for_local(std::chrono::milliseconds time);
    QList<SaneSource> sources() const;
    bool complete() const;

private:
    void list(const SaneApi* api, bool local_only);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    QList<SaneSource> sources_;
    bool local_known_ = false;
    bool complete_ = false;
};

} // namespace folidex
