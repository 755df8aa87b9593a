// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_session.h"

namespace folidex {

struct SaneSession::Core {
    explicit Core(SaneApi table) : api(std::move(table)) {}

    const SaneApi api;
    bool ready = false; ///< known to the thread alone
};

SaneSession::SaneSession(SaneApi api)
    : core_(std::make_shared<Core>(std::move(api))),
      thread_(std::make_shared<ScannerThread>([core = core_] {
          if (core->ready)
              core->api.exit();
      })) {}

std::shared_ptr<SaneSession> SaneSession::system() {
    static const auto session = std::make_shared<SaneSession>(system_sane());
    return session;
}

void SaneSession::post(Job job) {
    thread_->post([core = core_, job = std::move(job)] {
        if (!core->ready)
            core->ready = core->api.init(nullptr, nullptr) == SANE_STATUS_GOOD;
        job(core->ready ? &core->api : nullptr);
    });
}

} // namespace folidex
