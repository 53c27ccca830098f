#!/usr/bin/env python3
"""velmora --to json against the message file of the same trace.

    json_contract.py VELMORA TRACE...

For the traces named and for a trace of random frames, at both detail
levels: every line is one JSON object with the keys in their order, one a
frame line; and frame by frame, the layer-2 kind, the message name, each
element's heading and each field's text are exactly the message file's
lines for that frame at the same level.
"""
import json
import random
import subprocess
import sys

TOP_KEYS = ['line', 'time', 'direction', 'octets', 'layer2', 'message']
FULL_TOP_KEYS = ['line', 'time', 'direction', 'octets', 'layer2', 'tei_management', 'message']
FULL_LAYER2_KEYS = ['kind', 'sapi', 'cr', 'tei', 'ns', 'nr', 'pf']
MESSAGE_KEYS = ['protocol_discriminator', 'call_ref', 'call_ref_flag', 'call_ref_length', 'type', 'name', 'elements']
ELEMENT_KEYS = ['id', 'codeset', 'name', 'octets', 'fields']
FIELD_KEYS = ['name', 'bits', 'meaning', 'text']


def run(velmora, kind, trace, detail):
    done = subprocess.run([velmora, '-q', '--detail', detail, '--to', kind, trace, '-'], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE)
    if done.returncode not in (0, 1):
        raise SystemExit(f'{velmora} --to {kind} {trace}: exit {done.returncode}: {done.stderr.decode()}')
    return done.stdout


def keys_in_order(pairs, wanted, where):
    keys = [key for key, _ in pairs]
    if keys != wanted and not (wanted is FIELD_KEYS and keys == FIELD_KEYS + ['diagnostic']):
        raise AssertionError(f'{where}: keys {keys}, wanted {wanted}')


def check_object(frame, where, detail):
    full = detail == 'full'
    keys_in_order(frame, FULL_TOP_KEYS if full else TOP_KEYS, where)
    frame = dict(frame)
    keys_in_order(frame['layer2'], FULL_LAYER2_KEYS if full else ['kind'], where)
    if frame['message'] is not None:
        keys_in_order(frame['message'], MESSAGE_KEYS, where)
        message = dict(frame['message'])
        for element in message['elements']:
            keys_in_order(element, ELEMENT_KEYS, where)
            for field in dict(element)['fields']:
                keys_in_order(field, FIELD_KEYS, where)


def to_dicts(value):
    if isinstance(value, list) and value and isinstance(value[0], tuple):
        return {key: to_dicts(item) for key, item in value}
    if isinstance(value, list):
        return [to_dicts(item) for item in value]
    return value


def decoded_segments(trace_bytes, message_bytes, frame_lines):
    """The decoded text behind each frame line, by line number."""
    lines = trace_bytes.split(b'\n')
    if lines and lines[-1] == b'':
        lines.pop()
        lines = [line + b'\n' for line in lines]
    else:
        lines = [line + b'\n' for line in lines[:-1]] + [lines[-1]]
    segments = {}
    at = 0
    for number, line in enumerate(lines, 1):
        if message_bytes[at:at + len(line)] != line:
            raise AssertionError(f'line {number} is not copied where expected')
        at += len(line)
        if number in frame_lines:
            # The decode ends where the input goes on: the lines behind, up
            # to and with the next frame line, stand there as they are.
            following = b''
            for later in range(number, len(lines)):
                following += lines[later]
                if later + 1 in frame_lines:
                    break
            end = message_bytes.find(following, at) if following else len(message_bytes)
            segments[number] = message_bytes[at:end].decode('latin-1')
            at = end
    return segments


def check_trace(velmora, trace, detail):
    with open(trace, 'rb') as f:
        trace_bytes = f.read()
    message_bytes = run(velmora, 'message', trace, detail)
    frames = []
    for number, text in enumerate(run(velmora, 'json', trace, detail).decode('utf-8').splitlines(), 1):
        pairs = json.loads(text, object_pairs_hook=lambda pairs: pairs)
        check_object(pairs, f'{trace} at {detail}: JSON line {number}', detail)
        frames.append(to_dicts(pairs))
    segments = decoded_segments(trace_bytes, message_bytes, {frame['line'] for frame in frames})
    fields = 0
    for frame in frames:
        where = f'{trace} at {detail}: frame line {frame["line"]}'
        wanted = []
        segment = segments[frame['line']]
        expected = 'ISDN Layer 2: ' + frame['layer2']['kind']
        if not segment.startswith(expected):
            raise AssertionError(f'{where}: layer 2 {expected!r} against {segment[:80]!r}')
        message = frame['message']
        if message is not None and message['name'] is not None:
            wanted.append('Message type:' + message['name'])
        for element in (message or {}).get('elements', []):
            wanted.append('\tInformation element:' + element['name'])
            for field in element['fields']:
                wanted.append(('\t\t\t' if field.get('diagnostic') else '\t\t') + field['text'])
                fields += 1
                if field['bits'] is not None:
                    assert field['text'] == f'{field["name"]}={field["bits"]}  {field["meaning"]}', where
        lines = segment.split('\n')
        if detail == 'full':
            # The address, call reference and TEI management lines stand
            # outside the elements; a type without a name shows its octet.
            first = next((i for i, line in enumerate(lines) if line.startswith('\tInformation element:')), len(lines))
            lines = [line for line in lines[:first] if line.startswith('Message type:')] + lines[first:]
            lines = [line for line in lines if not line.endswith(' (no name)')]
        shown = [line for line in lines if line.startswith(('\t', 'Message type:'))]
        shown = [line for line in shown if line != 'Message type:']
        if shown != wanted:
            raise AssertionError(f'{where}: the message file shows\n{shown}\nthe JSON carries\n{wanted}')
    return len(frames), fields


def random_trace(path, count, seed):
    """Frame lines of random Q.931 messages among other lines."""
    rng = random.Random(seed)
    identifiers = [0x04, 0x08, 0x0C, 0x10, 0x14, 0x18, 0x1C, 0x1E, 0x20, 0x27, 0x28, 0x29, 0x2C, 0x34, 0x40, 0x6C,
                   0x6D, 0x70, 0x71, 0x74, 0x78, 0x79, 0x7C, 0x7D, 0x7E, 0x96, 0x9E, 0xA0, 0xA1, 0x83, 0x55, 0x4C,
                   0x4D, 0x91, 0x9D]
    types = [0x01, 0x02, 0x03, 0x05, 0x07, 0x0D, 0x0F, 0x45, 0x46, 0x4D, 0x5A, 0x62, 0x6E, 0x75, 0x7B, 0x7D, 0x33,
             0x24, 0x30, 0x64, 0x3F]
    lines = []
    for number in range(count):
        if rng.random() < 0.2:
            lines.append(f'{number:05d} 10:00:00.000 L1: a line between frames')
            continue
        frame = [rng.choice([0x00, 0x02]), 0x81, 0x00, rng.randrange(256), 0x08]
        length = rng.choice([0, 1, 2])
        frame.append(length)
        frame += [rng.randrange(256) for _ in range(length)]
        frame.append(rng.choice(types))
        for _ in range(rng.randrange(6)):
            identifier = rng.choice(identifiers)
            frame.append(identifier)
            if identifier & 0x80:
                continue
            size = rng.randrange(12)
            frame.append(size)
            if identifier == 0x1C and size > 0:
                # A Facility of ROSE-like components, well formed or not.
                body = [0x91, rng.choice([0xA1, 0xA2, 0xA3, 0xA4]), max(size - 3, 0), 0x02, 0x01, rng.randrange(256),
                        0x02, 0x01, rng.randrange(50)]
                frame += (body + [rng.randrange(256) for _ in range(size)])[:size]
            else:
                frame += [rng.randrange(256) for _ in range(size)]
        if rng.random() < 0.1:
            frame = frame[:rng.randrange(1, len(frame) + 1)]
        cells = ' '.join(f'0x{octet:02x}' for octet in frame[:300])
        line = f'{number:05d} 2026-03-14 10:00:{number % 60:02d}.000 **** D-CH {rng.choice(["TX", "RX"])} HDLC:{len(frame)}  | {cells}'
        lines.append(line.ljust(82))
    with open(path, 'w') as f:
        f.write('\n'.join(lines) + '\n')


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    velmora, traces = sys.argv[1], sys.argv[2:]
    random_path = f'/tmp/velmora_json_random_{__import__("os").getpid()}.txt'
    random_trace(random_path, 3000, 20261124)
    frames = fields = 0
    try:
        for trace in traces + [random_path]:
            for detail in ('description', 'full'):
                got = check_trace(velmora, trace, detail)
                frames += got[0]
                fields += got[1]
    finally:
        __import__('os').remove(random_path)
    print(f'{frames} frames, {fields} fields: JSON and message file agree')
    print(f'{2 * (len(traces) + 1)} passed, 0 failed')


if __name__ == '__main__':
    main()
