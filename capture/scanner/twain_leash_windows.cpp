// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_leash.h"

#include <windows.h>

namespace folidex {

namespace {

/// The system ends all processes of the job when the last handle to it goes, which is when this
/// process does.
HANDLE job_of_helpers() {
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

} // namespace

void put_on_leash(qint64 process) {
    const HANDLE handle =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process));
    if (!handle)
        return;
    if (!AssignProcessToJobObject(job_of_helpers(), handle))
        qWarning("A scanning helper could not be put on a leash: error %lu", GetLastError());
    CloseHandle(handle);
}

} // namespace folidex
