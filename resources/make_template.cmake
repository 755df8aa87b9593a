# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# cmake -DSQLITE3=... -DSCRIPT=dbm.sql -DTEMPLATE=dbm.mdb -P make_template.cmake
# A failed run leaves no template behind that looks finished.
file(REMOVE ${TEMPLATE} ${TEMPLATE}.new)
execute_process(
    COMMAND ${SQLITE3} -batch -bail ${TEMPLATE}.new
    INPUT_FILE ${SCRIPT}
    OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${TEMPLATE}.new ${TEMPLATE})
