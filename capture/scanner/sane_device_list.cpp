// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_device_list.h"

#include "capture/scanner/sane_error.h"

#include <algorithm>

namespace folidex {

namespace {

QString plain_name(const SaneSource& source) {
    const QString name = (source.vendor + u' ' + source.model).simplified();
    return name.isEmpty() ? sane_text(source.device) : name;
}

QList<SaneSource> devices(const SaneApi& api, bool local_only) {
    const SANE_Device** list = nullptr;
    const SANE_Status status = api.get_devices(&list, local_only ? SANE_TRUE : SANE_FALSE);
    if (status != SANE_STATUS_GOOD || !list) {
        qWarning("The search for scanners failed: %s", api.strstatus(status));
        return {};
    }
    QList<SaneSource> found;
    for (; *list; ++list) {
        const SANE_Device& device = **list;
        if (device.name)
            found.append({device.name, sane_text(device.vendor), sane_text(device.model),
                          sane_text(device.type)});
    }
    return found;
}

} // namespace

QStringList source_names(const QList<SaneSource>& sources) {
    QStringList names;
    for (const SaneSource& source : sources)
        names.append(plain_name(source));
    const QStringList plain = names;
    for (qsizetype k = 0; k < names.size(); ++k)
        if (plain.count(plain[k]) > 1)
            names[k] = QStringLiteral("%1 (%2)").arg(plain[k], sane_text(sources[k].device));
    return names;
}

std::shared_ptr<SaneDeviceList> SaneDeviceList::search(SaneSession& session) {
    auto found = std::make_shared<SaneDeviceList>();
    session.post([found](const SaneApi* api) { found->list(api, true); });
    session.post([found](const SaneApi* api) {
        // Nobody is left to see what the network answers: the thread is free sooner.
        if (found.use_count() > 1)
            found->list(api, false);
    });
    return found;
}

void SaneDeviceList::wait_for_local(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, time, [this] { return local_known_; });
}

QList<SaneSource> SaneDeviceList::sources() const {
    const std::lock_guard lock(mutex_);
    return sources_;
}

bool SaneDeviceList::complete() const {
    const std::lock_guard lock(mutex_);
    return complete_;
}

void SaneDeviceList::list(const SaneApi* api, bool local_only) {
    const QList<SaneSource> found = api ? devices(*api, local_only) : QList<SaneSource>();
    const std::lock_guard lock(mutex_);
    for (const SaneSource& source : found) {
        const bool known =
            std::any_of(sources_.cbegin(), sources_.cend(),
                        [&](const SaneSource& other) { return other.device == source.device; });
        if (!known)
            sources_.append(source);
    }
    local_known_ = true;
    complete_ = !local_only;
    changed_.notify_all();
}

} // namespace folidex
