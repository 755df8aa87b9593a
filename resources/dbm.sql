-- SPDX-FileCopyrightText: The Folidex authors
-- SPDX-License-Identifier: Apache-2.0
--
-- The template database of a new data folder. NOCASE is what an open database of the program
-- replaces by a comparison that ignores case in every script; no index may be made on such a
-- column, because other tools know NOCASE for A to Z only.

PRAGMA page_size = 4096;
PRAGMA encoding = 'UTF-8';
PRAGMA journal_mode = DELETE;

BEGIN;

CREATE TABLE scans (
    link        INTEGER PRIMARY KEY,
    description TEXT COLLATE NOCASE,
    date        REAL, -- days since 30 December 1899, the fraction being the time of day
    fname       TEXT COLLATE NOCASE,
    location    TEXT COLLATE NOCASE
);
CREATE INDEX scans_date_link ON scans (date, link);

CREATE TABLE tags (
    Link        INTEGER PRIMARY KEY,
    Description TEXT COLLATE NOCASE
);

-- Pairs keep the order in which they were added and may repeat. The second index is on scan
-- alone: with the tag in it, a document's tags would come back in order of number.
CREATE TABLE tagged (
    scan INTEGER,
    tag  INTEGER
);
CREATE INDEX tagged_tag_scan ON tagged (tag, scan);
CREATE INDEX tagged_scan ON tagged (scan);

CREATE TABLE settings (
    id          INTEGER PRIMARY KEY,
    form        TEXT COLLATE NOCASE,
    description TEXT COLLATE NOCASE,
    user        INTEGER,
    value       TEXT COLLATE NOCASE
);

-- One row: the next number to hand out.
CREATE TABLE comp (
    NewLink INTEGER
);
INSERT INTO comp (NewLink) VALUES (1);

COMMIT;
