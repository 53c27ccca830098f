#!/usr/bin/env python3
"""Writes the seed corpus of the fuzz targets into fuzz/corpus/<target>/.

Seeds come from the sample trace (in small slices), the golden-test inputs,
the frames in them (whole Q.931 messages, each element with the index of
its decoder, and pcap and pcapng captures of them) and a few hostile inputs
made here. Files named regression-*
are reproducers of faults found by fuzzing and are kept as they are.

Run from anywhere: python3 fuzz/make_corpus.py
"""
import hashlib
import pathlib
import re
import struct

ROOT = pathlib.Path(__file__).resolve().parent.parent
CORPUS = ROOT / "fuzz" / "corpus"

# The element registry's identifiers in their order; the fuzz target picks
# an element by its index there, and the index behind the last is the
# unknown-element dump.
REGISTRY = [int(value, 16) for value in re.findall(
    r'^\s*\{(0x[0-9A-F]{2}), "', (ROOT / "elements" / "element_registry.h").read_text(), re.M)]
UNKNOWN_INDEX = len(REGISTRY)
DECODER_COUNT = UNKNOWN_INDEX + 1


def decoder_index(identifier):
    # Type 1 single octets (Congestion level, Repeat indicator) by bits 8-5.
    type_one = identifier & 0x80 and identifier & 0x70 != 0x20
    key = identifier & 0xF0 if type_one else identifier
    return REGISTRY.index(key) if key in REGISTRY else UNKNOWN_INDEX


def frame_octets(line):
    """The frame of a frame line, the way the scanner reads well-formed cells."""
    match = re.search(rb"HDLC.(\d+)....", line)
    if len(line) < 80 or b"****" not in line or not match:
        return None
    count = min(int(match.group(1)), 300)
    cells = line[match.end():]
    octets = []
    for k in range(count):
        cell = cells[5 * k:5 * k + 5]
        try:
            octets.append(int(cell[2:4], 16))
        except ValueError:
            break
    return bytes(octets)


def q931_messages(texts):
    for text in texts:
        for line in text.split(b"\n"):
            frame = frame_octets(line)
            if frame and len(frame) >= 5 and frame[2] & 1 == 0 and frame[4] == 0x08:
                yield frame[4:]


def elements(message):
    """Each element's octets, to the element's end or the frame's."""
    if len(message) < 2 or message[1] + 2 >= len(message):
        return
    index = message[1] + 3
    while index < len(message):
        identifier = message[index]
        size = 1 if identifier & 0x80 else (message[index + 1] + 2 if index + 1 < len(message) else 2)
        yield message[index:index + size]
        index += size


def call_tracker_records(text):
    """A trace's frames as records of the call tracker target: a control
    octet (TX/RX in bits 2-1, a whole frame in bit 3, one second more in
    bits 8-4), a length and the octets; Q.931 in an I-frame from octet 6 on."""
    records = b""
    for line in text.split(b"\n"):
        frame = frame_octets(line)
        if frame is None:
            continue
        word = re.search(rb"\b(TX|RX)\b", line)
        control = 0x08 | (0 if not word else 1 if word.group(1) == b"TX" else 2)
        if len(frame) >= 5 and frame[2] & 1 == 0 and frame[4] == 0x08:
            octets = frame[5:]
        else:
            control, octets = control | 0x04, frame
        octets = octets[:255]
        records += bytes([control, len(octets)]) + octets
    return records


def write(target, name, data):
    directory = CORPUS / target
    directory.mkdir(parents=True, exist_ok=True)
    (directory / name).write_bytes(data)


def seed_name(data):
    return "seed-" + hashlib.sha1(data).hexdigest()[:16]


def frame_line(octets, announced=None, tail=b"\n"):
    count = len(octets) if announced is None else announced
    cells = b"".join(b"0x%02x " % octet for octet in octets)
    line = b"00001 2026-03-14 10:00:00.000 **** D-CH RX HDLC:%d  | " % count + cells
    return line + b" " * max(0, 90 - len(line)) + tail


def hostile_texts():
    yield b""
    yield b"\n\n\r\n"
    yield frame_line(bytes([0x00, 0x81, 0x7F]), announced=99999999999999999999)
    yield frame_line(bytes([0x00, 0x81, 0x00, 0x00, 0x08, 0x01, 0x05, 0x05, 0x04, 0x03]), announced=300)
    yield frame_line(bytes([0x00, 0x81, 0x00, 0x00, 0x08, 0x01, 0x05, 0x05, 0xA1]), tail=b"")[:70]
    yield frame_line(bytes([0x00, 0x81, 0x7F]), tail=b"\r\n") * 3
    yield b"**** HDLC" + b"x" * 2040 + b"HDLC:3  | 0x00 0x81 0x7f" + b" " * 80 + b"\n"
    yield b"y" * 2046 + b"\n" + b"z" * 2047 + b"**** HDLC:3  | 0x00 0x81 0x73" + b" " * 60
    yield bytes(range(256)) + b"**** HDLC\x00:3\x00 | 0x00 0x81 0x7f" + bytes(60)
    yield b"\x7fELF\x02\x01\x01\x00" + bytes(200) + b"\xff\xfe**** HDLC:7F | 0x7F 0xAB 0xff" + b"\x80" * 90


def pcap(frames, link=203, big_endian=False, nanoseconds=False, snap=65535, stamp=1773479702):
    """A pcap file of the frames, one a millisecond; a frame may be (data, captured length)."""
    order = ">" if big_endian else "<"
    data = struct.pack(order + "IHHiIII", 0xA1B23C4D if nanoseconds else 0xA1B2C3D4, 2, 4, 0, 0, snap, link)
    for index, frame in enumerate(frames):
        octets, captured = frame if isinstance(frame, tuple) else (frame, len(frame))
        fraction = index * (1000000 if nanoseconds else 1000)
        data += struct.pack(order + "IIII", stamp, fraction, captured, len(octets)) + octets
    return data


def pcapng_block(kind, body):
    body += bytes(-len(body) % 4)
    return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)


def pcapng(frames, links=(203,)):
    """A pcapng file: a section, an interface per link type, then the frames on
    the last interface; a frame may be (interface, data)."""
    data = pcapng_block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1))
    for link in links:
        data += pcapng_block(1, struct.pack("<HHI", link, 0, 65535))
    for index, frame in enumerate(frames):
        interface, octets = frame if isinstance(frame, tuple) else (len(links) - 1, frame)
        stamp = 1773479702000000 + index
        data += pcapng_block(6, struct.pack("<IIIII", interface, stamp >> 32, stamp & 0xFFFFFFFF, len(octets),
                                            len(octets)) + octets)
    return data


def cooked(frame, packet_type):
    """A frame behind the LINKTYPE_LINUX_LAPD pseudo-header."""
    return struct.pack(">HHH8sH", packet_type, 8445, 0, bytes(8), 0x0030) + frame


def capture_seeds(texts):
    frames = [frame for text in texts for frame in map(frame_octets, text.split(b"\n")) if frame is not None]
    sabme = bytes([0x00, 0x81, 0x7F])
    yield pcap(frames[:40])
    yield pcap([cooked(frame, (0, 4, 3)[i % 3]) for i, frame in enumerate(frames[40:80])], link=177,
               big_endian=True, nanoseconds=True)
    yield pcapng(frames[80:120])
    yield pcapng([cooked(frame, 4) for frame in frames[:10]], links=(177,))
    # Damaged or odd: a header cut short, a huge snap length, a packet longer
    # than the file, an empty packet, a pseudo-header cut short, another
    # interface's link type in the middle, a cut-off block, a capture length
    # beyond any snap length, another link type, time stamps past 2038.
    yield pcap([sabme])[:10]
    yield pcap([sabme], snap=0xFFFFFFFF)
    yield pcap([sabme, (sabme, 1000)])
    yield pcap([b"", sabme, bytes(1)])
    yield pcap([bytes(15), cooked(sabme, 4)], link=177)
    yield pcapng([sabme, (1, sabme)], links=(203, 1))
    yield pcapng([sabme, sabme])[:-7]
    yield pcap([sabme, (sabme, 0x7FFFFFFF)])
    yield pcap([sabme], link=1)
    yield pcap([sabme, bytes(400)], stamp=0xFFFFFFFF)


def main():
    golden = sorted((ROOT / "tests" / "data").glob("*.in.txt"))
    sample = (ROOT / "samples" / "trace.txt").read_bytes()
    for target in ("line_handler", "translation_run", "element_decoders", "q931_message", "capture_input",
                   "call_tracker"):
        directory = CORPUS / target
        if directory.exists():
            for old in directory.glob("seed-*"):
                old.unlink()

    sample_lines = sample.splitlines(keepends=True)
    texts = [b"".join(sample_lines[i:i + 8]) for i in range(0, len(sample_lines), 8)]
    texts += [path.read_bytes() for path in golden]
    texts += list(hostile_texts())

    for text in texts:
        write("line_handler", seed_name(text), text)
        # Run control byte: bit 1 link memory, bit 2 same-file check, bit 3 the
        # parallel run, bits 8-4 the second run's start; then the line
        # reader's block size.
        for control in (0x00, 0x83, 0x85, 0xFE):
            data = bytes([control, 0x55]) + text
            write("translation_run", seed_name(data), data)
    whole = bytes([0x80, 0x00]) + sample
    write("translation_run", seed_name(whole), whole)

    for capture in capture_seeds(texts + [sample]):
        write("capture_input", seed_name(capture), capture)

    # Byte 0 sets the waiting limit: 1 and 16.
    call_traces = sorted((ROOT / "tests" / "data" / "calls").glob("*.trace.txt"))
    for text in [sample] + [path.read_bytes() for path in golden + call_traces]:
        for limit in (0x00, 0x0F):
            data = bytes([limit]) + call_tracker_records(text)
            write("call_tracker", seed_name(data), data)

    messages = list(q931_messages(texts + [sample]))
    for message in messages:
        write("q931_message", seed_name(message), message)
        for element in elements(message):
            data = bytes([decoder_index(element[0])]) + element
            write("element_decoders", seed_name(data), data)
    # Every decoder gets a few seeds, whether the traces hold its element or not.
        identifiers = dict(enumerate(REGISTRY))
    identifiers.update({REGISTRY.index(0xB0): 0xBF, REGISTRY.index(0xD0): 0xD2, UNKNOWN_INDEX: 0x1C})
    for index in range(DECODER_COUNT):
        identifier = identifiers[index]
        for contents in (b"", b"\x80", b"\x80\x90\xa3", b"\x00\x01\x02\x83\x84", b"\x91\x81" + bytes(range(40))):
            data = bytes([index, identifier, len(contents)]) + contents
            write("element_decoders", seed_name(data), data)
        data = bytes([index, identifier, 0x20, 0x80])
        write("element_decoders", seed_name(data), data)


if __name__ == "__main__":
    main()
