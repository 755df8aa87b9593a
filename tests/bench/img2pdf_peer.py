# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Makes PDFs of pictures with img2pdf, for bench_pages to compare with.

Each line read is: kind, path of the PDF, paths of the pictures, separated by tabs. Kind "1-bit"
hands the pictures to img2pdf as they are; "grey" and "colour" make JPEGs of quality 75 first, as
the program does. Each line written is the processor time it took in seconds, without the start of Python.
"""
import io
import sys
import time

import img2pdf
from PIL import Image

# The libraries talk on the standard output now and then.
answers = sys.stdout
sys.stdout = sys.stderr
LAYOUT = img2pdf.get_fixed_dpi_layout_fun((300, 300))


def jpeg(path):
    buffer = io.BytesIO()
    with Image.open(path) as picture:
        picture.save(buffer, "JPEG", quality=75)
    return buffer.getvalue()


def make(kind, pdf, pictures):
    pages = pictures if kind == "1-bit" else [jpeg(path) for path in pictures]
    with open(pdf, "wb") as out:
        img2pdf.convert(*pages, layout_fun=LAYOUT, outputstream=out)


for line in sys.stdin:
    fields = line.rstrip("\n").split("\t")
    begin = time.process_time()
    make(fields[0], fields[1], fields[2:])
    print(time.process_time() - begin, file=answers, flush=True)
