// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_leash.h"

#include <windows.h>

namespace folidex {

namespace {

bool limit(HANDLE job, DWORD flags) {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = flags;
    return SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
}

} // namespace

TwainLeash::~TwainLeash() {
    if (job_)
        CloseHandle(job_);
}

void TwainLeash::put_on(qint64 process) {
    const HANDLE handle =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process));
    if (!handle)
        return;
    // The system ends the processes of a job when the last handle to it goes, which is when this
    // process does.
    job_ = CreateJobObjectW(nullptr, nullptr);
    if (!job_ || !limit(job_, JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE) ||
        !AssignProcessToJobObject(job_, handle))
        qWarning("A scanning helper could not be put on a leash: error %lu", GetLastError());
    CloseHandle(handle);
}

void TwainLeash::let_go() {
    if (job_ && !limit(job_, 0))
        qWarning("A scanning helper could not be let go: error %lu", GetLastError());
}

} // namespace folidex
