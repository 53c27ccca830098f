#!/usr/bin/env python3
"""The README's examples of velmora's output, made from the bundled sample.

Each example is a fenced block right behind a line
    <!-- output of: COMMAND -->
where COMMAND is a shell pipeline run in the repository's root with the
velmora under test first on PATH.

    readme_examples.py check  VELMORA README   fails when a block differs
    readme_examples.py update VELMORA README   writes the blocks anew
"""
import os
import re
import subprocess
import sys

MARKER = re.compile(r'^\s*<!-- output of: (.*) -->\s*$')


def run(command, velmora, root):
    env = dict(os.environ, PATH=os.path.dirname(os.path.abspath(velmora)) + os.pathsep + os.environ['PATH'])
    done = subprocess.run(['bash', '-o', 'pipefail', '-c', command], cwd=root, env=env,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if done.returncode != 0:
        sys.exit(f'readme_examples: `{command}` failed ({done.returncode}): {done.stderr.decode()}')
    return done.stdout.decode('utf-8').splitlines()


def examples(lines):
    """(command, fence indent, first content line, end line) of each example."""
    found = []
    for at, line in enumerate(lines):
        marker = MARKER.match(line)
        if not marker:
            continue
        fence = at + 1
        if fence >= len(lines) or lines[fence].strip() != '```':
            sys.exit(f'readme_examples: line {at + 1}: the marker is not followed by a fenced block')
        indent = lines[fence][:len(lines[fence]) - len(lines[fence].lstrip())]
        end = fence + 1
        while end < len(lines) and lines[end].strip() != '```':
            end += 1
        found.append((marker.group(1), indent, fence + 1, end))
    return found


def main():
    if len(sys.argv) != 4 or sys.argv[1] not in ('check', 'update'):
        sys.exit(__doc__)
    mode, velmora, readme = sys.argv[1:]
    root = os.path.dirname(os.path.abspath(readme))
    with open(readme, encoding='utf-8') as f:
        lines = f.read().split('\n')
    found = examples(lines)
    if not found:
        sys.exit('readme_examples: no example found')
    failures = 0
    # From the last, so that line numbers of earlier blocks stay valid.
    for command, indent, start, end in reversed(found):
        wanted = [(indent + line) if line else line for line in run(command, velmora, root)]
        if lines[start:end] == wanted:
            continue
        if mode == 'update':
            lines[start:end] = wanted
            continue
        failures += 1
        print(f'README line {start}: the example differs from what `{command}` prints:')
        for line in wanted:
            print('  + ' + line)
        for line in lines[start:end]:
            print('  - ' + line)
    if mode == 'update':
        with open(readme, 'w', encoding='utf-8') as f:
            f.write('\n'.join(lines))
    print(f'{len(found) - failures} passed, {failures} failed')
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
