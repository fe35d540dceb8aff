#!/usr/bin/python3
"""Prints what xlrd reads from an .xls file, for tests to compare with what they wrote.

xls_dump.py FILE           one line per sheet, then one per cell that is not empty:
                           sheet "NAME" rows=N cols=M
                           B3 number 2.5 fmt="#,##0.00" bold
xls_dump.py --stream FILE  the length and SHA-256 of the file's Workbook stream, after checking that
                           the allocation table marks its own sectors and the index sectors as such

Whatever xlrd complains about goes to standard error, and so does an EXTSST record (the string index
that xlrd itself ignores) that does not point at the strings it claims to; a test treats any complaint
as a fault.
"""
import hashlib
import io
import json
import struct
import sys

import xlrd
from xlrd import compdoc


def cell_value(book, cell):
    if cell.ctype == xlrd.XL_CELL_TEXT:
        return json.dumps(cell.value, ensure_ascii=False)
    if cell.ctype == xlrd.XL_CELL_NUMBER:
        return repr(cell.value)
    if cell.ctype == xlrd.XL_CELL_DATE:
        y, mo, d, h, mi, s = xlrd.xldate_as_tuple(cell.value, book.datemode)
        return f"{cell.value!r} {y:04}-{mo:02}-{d:02} {h:02}:{mi:02}:{s:02}"
    if cell.ctype == xlrd.XL_CELL_BOOLEAN:
        return "TRUE" if cell.value else "FALSE"
    if cell.ctype == xlrd.XL_CELL_ERROR:
        return xlrd.error_text_from_code[cell.value]
    return ""


KINDS = {xlrd.XL_CELL_TEXT: "text", xlrd.XL_CELL_NUMBER: "number", xlrd.XL_CELL_DATE: "date",
         xlrd.XL_CELL_BOOLEAN: "bool", xlrd.XL_CELL_ERROR: "error", xlrd.XL_CELL_BLANK: "blank"}


def cell_line(book, sheet, row, col):
    cell = sheet.cell(row, col)
    parts = [xlrd.cellname(row, col), KINDS[cell.ctype]]
    value = cell_value(book, cell)
    if value:
        parts.append(value)
    xf = book.xf_list[cell.xf_index]
    number_format = book.format_map[xf.format_key].format_str
    if number_format != "General":
        parts.append("fmt=" + json.dumps(number_format, ensure_ascii=False))
    if book.font_list[xf.font_index].bold:
        parts.append("bold")
    return " ".join(parts)


def globals_records(stream):
    """(id, position, size) of each record of the workbook globals, up to their EOF."""
    position = 0
    while position + 4 <= len(stream):
        record_id, size = struct.unpack_from("<HH", stream, position)
        yield record_id, position, size
        if record_id == 0x000A:
            return
        position += 4 + size


def check_extsst(stream, strings, log):
    records = list(globals_records(stream))
    string_records = {position for record_id, position, _ in records if record_id in (0x00FC, 0x003C)}
    found = [(position, size) for record_id, position, size in records if record_id == 0x00FF]
    if len(found) != 1:
        log.write(f"{len(found)} EXTSST records\n")
        return
    position, size = found[0]
    (per_bucket,) = struct.unpack_from("<H", stream, position + 4)
    buckets = [struct.unpack_from("<IH", stream, position + 6 + 8 * k) for k in range((size - 2) // 8)]
    if per_bucket < 8 or len(buckets) != -(-len(strings) // per_bucket):
        log.write(f"EXTSST: {len(buckets)} buckets of {per_bucket} for {len(strings)} strings\n")
    for k, (start, offset) in enumerate(buckets):
        count, flags = struct.unpack_from("<HB", stream, start)
        expected = strings[k * per_bucket].encode("utf-16-le")
        width = 2 if flags & 1 else 1
        head = stream[start + 3:start + 3 + min(count, 4) * width]
        shown = head.decode("utf-16-le" if width == 2 else "latin-1").encode("utf-16-le")
        if start - offset not in string_records or count * 2 != len(expected) or not expected.startswith(shown):
            log.write(f"EXTSST bucket {k} points at {start} (offset {offset}), not at string {k * per_bucket}\n")


def dump_cells(path, log):
    # on demand, so that xlrd keeps its string table for the index check
    book = xlrd.open_workbook(path, formatting_info=True, logfile=log, on_demand=True)
    with open(path, "rb") as f:
        check_extsst(compdoc.CompDoc(f.read(), logfile=log).get_named_stream("Workbook"), book._sharedstrings, log)
    for sheet in book.sheets():
        print(f"sheet {json.dumps(sheet.name, ensure_ascii=False)} rows={sheet.nrows} cols={sheet.ncols}")
        for row in range(sheet.nrows):
            for col in range(sheet.row_len(row)):
                if sheet.cell_type(row, col) != xlrd.XL_CELL_EMPTY:
                    print(cell_line(book, sheet, row, col))


def check_allocation(data, doc, log):
    table_sectors, = struct.unpack_from("<I", data, 0x2C)
    index_sectors, = struct.unpack_from("<I", data, 0x48)
    listed = [s for s in struct.unpack_from("<109i", data, 0x4C) if s >= 0]
    table = list(doc.SAT)
    if table.count(-3) != table_sectors or table.count(-4) != index_sectors:
        log.write(f"{table.count(-3)}/{table_sectors} table and {table.count(-4)}/{index_sectors} index sectors marked\n")
    if any(table[s] != -3 for s in listed) or len(table) < (len(data) - 512) // 512:
        log.write("the allocation table does not cover the file or its own sectors\n")


def dump_stream(path, log):
    with open(path, "rb") as f:
        data = f.read()
    doc = compdoc.CompDoc(data, logfile=log)
    check_allocation(data, doc, log)
    stream = doc.get_named_stream("Workbook")
    print(len(stream), hashlib.sha256(stream).hexdigest())


def main():
    sys.stdout.reconfigure(encoding="utf-8")
    log = io.StringIO()
    if sys.argv[1] == "--stream":
        dump_stream(sys.argv[2], log)
    else:
        dump_cells(sys.argv[1], log)
    sys.stderr.write(log.getvalue())


main()
