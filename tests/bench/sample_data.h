// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace folidex::bench {

constexpr int kTags = 200;
constexpr int kFirstDay = 36500;
constexpr int kDays = 3650;

/// Opens a new data file as the program's database and fills it: documents with dates anywhere
/// in the ten years and one to five of kTags tags, of which tag 0 is on a good part of all
/// documents and the last on a few of a thousand. The same documents each time. Throws Error.
void open_sample(const QString& file_name, int documents);

/// How many documents: FOLIDEX_BENCH_DOCUMENTS, else 100,000.
int sample_size();

} // namespace folidex::bench
