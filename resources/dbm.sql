-- SPDX-FileCopyrightText: The Folidex authors
-- SPDX-License-Identifier: Apache-2.0
--
-- The template database of a new data folder.

CREATE TABLE scans (
    link        INTEGER PRIMARY KEY,
    description TEXT,
    date        REAL,
    fname       TEXT,
    location    TEXT
);
CREATE INDEX scans_date_link ON scans (date, link);
