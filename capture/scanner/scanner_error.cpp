// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scanner_error.h"

namespace folidex {

Error no_answer_error(const QString& scanner) {
    return {kDeviceUnavailable,
            QStringLiteral("The scanner \"%1\" does not answer; no page was kept.\r\n\r\nSwitch it "
                           "off and on again, check its cable, then scan again.")
                .arg(scanner)};
}

Error still_hangs_error() {
    return {kDeviceUnavailable,
            QStringLiteral("The scanner that was cancelled before still does not answer, so no new "
                           "scan can start.\r\n\r\nSwitch it off and on again. If that does not "
                           "help, save your work and start Folidex again.")};
}

} // namespace folidex
