// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A library that can be loaded and is no source manager.

extern "C" __declspec(dllexport) int something_else() {
    return 0;
}
