#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the keyed archives of this folder, binary and XML, and expected.txt, which says what is in each.

Run it after a change; the files are kept in the tree. Each line of expected.txt is a file, a tab, and either the ranges
of the index set as location+length, "empty" for the empty set, or "none" for what must not decode. Those stand in
fuzzing/corpus/keyed_archive, under names that say what is wrong with them.
"""
import pathlib
import plistlib
import struct
from plistlib import UID

here = pathlib.Path(__file__).resolve().parent
corpus = here.parents[2] / "fuzzing" / "corpus" / "keyed_archive"
expected = {}


def pack(numbers):
    """Base 128, low seven bits first, bit 7 set while more follow."""
    out = bytearray()
    for number in numbers:
        while number >= 0x80:
            out.append(number & 0x7F | 0x80)
            number >>= 7
        out.append(number)
    return bytes(out)


def classes(name):
    chain = {"NSMutableIndexSet": ["NSMutableIndexSet", "NSIndexSet", "NSObject"],
             "NSMutableData": ["NSMutableData", "NSData", "NSObject"]}
    return {"$classname": name, "$classes": chain.get(name, [name, "NSObject"])}


def archive(objects, top=None):
    return {"$archiver": "NSKeyedArchiver", "$version": 100000, "$top": top or {"root": UID(1)},
            "$objects": ["$null"] + objects}


def index_set(ranges, name="NSIndexSet", data="object"):
    """`data` is how the packed ranges are kept: as an object with "NS.data", or as plain data."""
    root = {"$class": UID(2), "NSRangeCount": len(ranges)}
    objects = [root, classes(name)]
    if len(ranges) == 1:
        root["NSLocation"], root["NSLength"] = ranges[0]
    elif ranges:
        packed = pack([number for pair in ranges for number in pair])
        root["NSRangeData"] = UID(3)
        objects += [packed] if data == "plain" else [{"$class": UID(4), "NS.data": packed}, classes("NSMutableData")]
    return archive(objects)


def text_of(ranges):
    return " ".join(f"{location}+{length}" for location, length in ranges) or "empty"


def keep(name, content, result, seed=False):
    """What does not decode is part of the fuzzer's corpus, and so are some seeds."""
    if result != "none":
        (here / name).write_bytes(content)
    if result == "none" or seed:
        (corpus / name).write_bytes(content)
    expected[name] = result


def with_references_in_words(value):
    """XML has no word for a reference."""
    if isinstance(value, UID):
        return {"CF$UID": value.data}
    if isinstance(value, dict):
        return {key: with_references_in_words(each) for key, each in value.items()}
    return [with_references_in_words(each) for each in value] if isinstance(value, list) else value


def both(name, value, result, seed=False):
    keep(f"{name}.binary", plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False), result, seed)
    keep(f"{name}.xml", plistlib.dumps(with_references_in_words(value), sort_keys=False), result, seed)


def sets():
    several = [(1, 1), (4, 2), (200, 1)]
    many = [(i * 3, 1 + i % 2) for i in range(500)]
    far = [(0, 1), (16384, 1), (2**40, 5), (2**63 - 2, 1)]
    both("row_0", index_set([(0, 1)]), "0+1", True)
    both("row_5", index_set([(5, 1)]), "5+1")
    both("rows_2_to_4", index_set([(2, 3)]), "2+3")
    both("mutable_set", index_set([(7, 1)], "NSMutableIndexSet"), "7+1")
    both("empty_set", index_set([]), "empty", True)
    both("several_ranges", index_set(several), text_of(several), True)
    both("several_ranges_as_plain_data", index_set(several, data="plain"), text_of(several), True)
    both("mutable_set_of_several_ranges", index_set(several, "NSMutableIndexSet"), text_of(several))
    both("five_hundred_ranges", index_set(many), text_of(many))
    both("ranges_up_to_the_last_index", index_set(far), text_of(far))
    both("all_indexes", index_set([(0, 2**63 - 1)]), text_of([(0, 2**63 - 1)]))

    empty_data = index_set([])
    empty_data["$objects"][1]["NSRangeData"] = UID(3)
    empty_data["$objects"].append(b"")
    both("empty_set_with_empty_data", empty_data, "empty")

    missing = index_set([(3, 1)])
    del missing["$objects"][1]["NSLocation"]
    both("missing_location_is_row_0", missing, "0+1")
    missing = index_set([(3, 1)])
    del missing["$objects"][1]["NSLength"]
    both("missing_length_is_empty", missing, "empty")
    missing = index_set([(3, 1)])
    del missing["$objects"][1]["NSRangeCount"]
    both("missing_count_is_empty", missing, "empty")

    extra = index_set([(3, 1)])
    extra["$objects"][1]["SomethingElse"] = UID(4)
    extra["$objects"] = extra["$objects"] + ["unused", 3.5, True, ["a", "b"]]
    both("unknown_keys_are_ignored", extra, "3+1")

    moved = archive([classes("NSIndexSet"), "between", {"NSLength": 2, "NSLocation": 9, "NSRangeCount": 1,
                                                        "$class": UID(1)}], {"other": UID(2), "root": UID(3)})
    both("elements_in_another_order", moved, "9+2")


def not_decoded():
    def damaged(name, value):
        both(name, value, "none")

    damaged("a_string_as_root", archive(["text"]))
    damaged("null_as_root", archive([], {"root": UID(0)}))
    damaged("no_root", archive(index_set([(1, 1)])["$objects"][1:], {"other": UID(1)}))
    damaged("a_number_as_reference", archive(index_set([(1, 1)])["$objects"][1:], {"root": 1}))
    damaged("reference_beyond_the_objects", archive(index_set([(1, 1)])["$objects"][1:], {"root": UID(50)}))
    damaged("an_array_as_root", archive([{"$class": UID(2), "NS.objects": [UID(1)]}, classes("NSArray")]))
    damaged("a_class_of_its_own", archive([{"$class": UID(1), "NSRangeCount": 0}]))
    damaged("no_class", archive([{"NSRangeCount": 1, "NSLocation": 1, "NSLength": 1}]))
    other = index_set([(1, 1)])
    other["$archiver"] = "SomeArchiver"
    damaged("another_archiver", other)
    other = index_set([(1, 1)])
    other["$version"] = 1
    damaged("another_version", other)
    damaged("no_archive_at_all", {"NSRangeCount": 1})
    damaged("a_list_as_the_whole", ["NSKeyedArchiver"])
    damaged("negative_count", archive([{"$class": UID(2), "NSRangeCount": -1}, classes("NSIndexSet")]))
    damaged("negative_location", index_set([(-1, 1)]))
    damaged("negative_length", index_set([(1, -1)]))
    damaged("range_beyond_the_last_index", index_set([(2**63 - 1, 1)]))
    damaged("range_that_overflows", index_set([(2**62, 2**63 - 1)]))
    damaged("location_above_63_bits", index_set([(2**63, 1)]))
    text = index_set([(1, 1)])
    text["$objects"][1]["NSLocation"] = "1"
    damaged("a_text_as_location", text)
    for name, packed, count in (("fewer_numbers_than_ranges", pack([1, 1, 4]), 2),
                                ("more_numbers_than_ranges", pack([1, 1, 4, 2, 9]), 2),
                                ("a_claim_of_endless_ranges", pack([1, 1, 4, 2]), 2**63 - 1),
                                ("a_number_that_never_ends", b"\xff" * 64, 2),
                                ("a_number_cut_off", pack([1, 1, 4]) + b"\x80", 2),
                                ("a_range_without_length", pack([1, 1, 4, 0]), 2),
                                ("ranges_in_descending_order", pack([9, 1, 4, 1]), 2),
                                ("ranges_that_overlap", pack([1, 5, 4, 1]), 2),
                                ("data_though_there_are_no_ranges", pack([1, 1]), 0),
                                ("no_data_at_all", b"", 2)):
        damaged(name, archive([{"$class": UID(2), "NSRangeCount": count, "NSRangeData": UID(3)},
                               classes("NSIndexSet"), packed]))
    damaged("data_that_is_its_own_data", archive(
        [{"$class": UID(2), "NSRangeCount": 2, "NSRangeData": UID(3)}, classes("NSIndexSet"),
         {"$class": UID(4), "NS.data": UID(3)}, classes("NSData")]))
    damaged("data_of_another_class", archive(
        [{"$class": UID(2), "NSRangeCount": 2, "NSRangeData": UID(3)}, classes("NSIndexSet"),
         {"$class": UID(4), "NS.data": pack([1, 1, 4, 2])}, classes("NSString")]))


def broken_binary():
    good = plistlib.dumps(index_set([(1, 1), (4, 2)]), fmt=plistlib.FMT_BINARY)
    body, trailer = good[:-32], good[-32:]
    unused, offset_size, reference_size, count, root, table = struct.unpack(">6sBBQQQ", trailer)

    def with_trailer(name, **changes):
        fields = dict(offset_size=offset_size, reference_size=reference_size, count=count, root=root, table=table)
        fields.update(changes)
        keep(f"{name}.binary", body + struct.pack(">6sBBQQQ", unused, *fields.values()), "none")

    with_trailer("offsets_of_no_bytes", offset_size=0)
    with_trailer("offsets_of_nine_bytes", offset_size=9)
    with_trailer("references_of_no_bytes", reference_size=0)
    with_trailer("references_of_255_bytes", reference_size=255)
    with_trailer("no_objects", count=0)
    with_trailer("endless_objects", count=2**64 - 1)
    with_trailer("root_beyond_the_objects", root=count)
    with_trailer("table_before_the_objects", table=0)
    with_trailer("table_beyond_the_file", table=2**64 - 1)
    with_trailer("table_in_the_trailer", table=len(good) - 16)
    keep("only_the_header.binary", b"bplist00", "none")
    keep("only_a_trailer.binary", b"bplist00\x00" + trailer, "none")
    keep("cut_in_the_middle.binary", good[:len(good) // 2], "none")

    def objects(name, parts, root_object=0):
        """A list of these encoded objects."""
        out, offsets = bytearray(b"bplist00"), []
        for part in parts:
            offsets.append(len(out))
            out += part
        place = len(out)
        out += b"".join(struct.pack(">H", offset) for offset in offsets)
        out += struct.pack(">6sBBQQQ", b"", 2, 1, len(parts), root_object, place)
        keep(f"{name}.binary", bytes(out), "none")

    objects("a_list_that_contains_itself", [b"\xa1\x00"])
    objects("a_dictionary_that_is_its_own_key", [b"\xd1\x00\x00"])
    objects("a_count_larger_than_the_file", [b"\xdf\x13" + struct.pack(">q", 2**62)])
    objects("a_negative_count", [b"\xdf\x13" + struct.pack(">q", -1)])
    objects("a_count_that_is_no_number", [b"\xdf\x55abcde"])
    objects("a_marker_cut_off", [b"\xdf"])
    objects("unknown_markers", [b"\xd2\x01\x02\x03\x04", b"\x7f", b"\x09", b"\xef", b"\x1f"])
    # Each object holds the next one ten times: expanded it would be ten to the thirtieth.
    objects("a_list_of_lists_of_lists", [b"\xaa" + bytes([i + 1] * 10) for i in range(30)] + [b"\x09"])


def broken_xml():
    good = plistlib.dumps(with_references_in_words(index_set([(1, 1), (4, 2)]))).decode()
    head, body = good.split("<plist", 1)
    xml = '<?xml version="1.0" encoding="UTF-8"?>\n'

    def text(name, content, result="none"):
        keep(f"{name}.xml", content.encode(), result)

    text("no_list_at_all", "Rows 1 to 4")
    text("cut_off", good[:len(good) * 2 // 3])
    text("something_behind_the_end", good + "<plist/>")
    text("two_values", xml + "<plist><true/><true/></plist>")
    text("no_value", xml + "<plist version='1.0'/>")
    text("another_root_element", xml + "<list/>")
    text("unknown_elements", xml + "<plist><dict><key>$top</key><table/></dict></plist>")
    text("a_key_without_value", xml + "<plist><dict><key>$top</key></dict></plist>")
    text("a_value_without_key", xml + "<plist><dict><true/></dict></plist>")
    text("two_keys_in_a_row", xml + "<plist><dict><key>a</key><key>b</key><true/></dict></plist>")
    text("a_key_outside_a_dictionary", xml + "<plist><array><key>a</key></array></plist>")
    text("an_element_inside_text", xml + "<plist><string>a<string>b</string></string></plist>")
    text("nested_without_end", xml + "<plist>" + "<array>" * 5000 + "</array>" * 5000 + "</plist>")
    text("an_entity_of_its_own", xml + '<!DOCTYPE plist [<!ENTITY one "1">]>\n<plist' + body.replace(">2<", ">&one;<"))
    text("entities_of_entities", xml + "<!DOCTYPE plist [<!ENTITY a0 'lol'>" + "".join(
        f"<!ENTITY a{i} '{f'&a{i - 1};' * 10}'>" for i in range(1, 12)) + "]>\n<plist><string>&a11;</string></plist>")
    text("an_entity_from_a_file", xml + '<!DOCTYPE plist [<!ENTITY x SYSTEM "file:///etc/hostname">]>\n'
         "<plist><string>&x;</string></plist>")
    text("an_undeclared_entity", head + "<plist" + body.replace("NSIndexSet", "&nothing;NSIndexSet", 1))
    broken = "AQ*ECAgE="
    text("data_that_is_no_base64", good.replace(good.split("<data>")[1].split("</data>")[0], broken))
    text("a_number_with_letters", good.replace("<integer>2</integer>", "<integer>2a</integer>", 1))
    text("numbers_as_they_may_be_written", good.replace("<integer>2</integer>", "<integer> +2\n</integer>"), "1+1 4+2")
    text("without_document_type", xml + "<plist" + body, "1+1 4+2")


corpus.mkdir(parents=True, exist_ok=True)
for folder in (here, corpus):
    for old in [*folder.glob("*.binary"), *folder.glob("*.xml")]:
        old.unlink()
sets()
not_decoded()
broken_binary()
broken_xml()
(here / "expected.txt").write_text("".join(f"{name}\t{result}\n" for name, result in sorted(expected.items())))
