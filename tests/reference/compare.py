#!/usr/bin/env python3
"""Compiles generated statements with the program and compares every byte with the second encoder.

    compare.py [--count N] [--seed S] [--batch B] TARNIOCTL TARNLAB

N is 100,000, or what TARNFW_STATEMENTS says.

The program runs in a lab and writes its messages to a file channel; each statement's messages are
then compared with what wire.py makes of the same description. Prints the number of statements and
messages compared; the first difference ends it with status 1 and shows statement and bytes.
"""
import argparse
import os
import random
import subprocess
import sys
import tempfile

import statements
import wire


def compile_text(tarnioctl, tarnlab, folder, text):
    source = os.path.join(folder, 'statements.conf')
    output = os.path.join(folder, 'messages.bin')
    with open(source, 'w', encoding='utf-8', newline='') as f:
        f.write('config file "%s";\n' % output)
        f.write(text)
    run = subprocess.run([tarnlab, 'run', tarnioctl, 'tarnfwcli', '-Override', '-l', source],
                         capture_output=True, check=False)
    if run.returncode != 0:
        sys.exit('the program refused %s with status %d:\n%s%s' %
                 (source, run.returncode, run.stdout.decode(), run.stderr.decode()))
    with open(output, 'rb') as f:
        return f.read()


def compare(got, batch):
    """Walks the file beside the expected messages; returns how many were equal."""
    at = sequence = 0
    for text, messages in batch:
        for command, body, selector in messages:
            want = wire.message(sequence, command, body, selector)
            have = got[at:at + len(want)]
            if have != want:
                place = next((i for i, (a, b) in enumerate(zip(have, want)) if a != b),
                             min(len(have), len(want)))
                print('different at byte %d of the message of command %d, from\n%s' %
                      (place, command, text))
                print('want %s' % want[max(0, place - 8):place + 24].hex(' '))
                print('have %s' % have[max(0, place - 8):place + 24].hex(' '))
                sys.exit(1)
            at += len(want)
            sequence += 1
    if at != len(got):
        sys.exit('%d bytes more than expected' % (len(got) - at))
    return sequence


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--count', type=int,
                        default=int(os.environ.get('TARNFW_STATEMENTS', '100000')))
    parser.add_argument('--batch', type=int, default=5000)
    parser.add_argument('--seed', type=int, default=20)
    parser.add_argument('tarnioctl')
    parser.add_argument('tarnlab')
    options = parser.parse_args()
    rng = random.Random(options.seed)
    messages = 0
    # Memory, where the host has such a folder: the messages are many and short.
    memory = '/dev/shm' if os.access('/dev/shm', os.W_OK) else None
    with tempfile.TemporaryDirectory(dir=memory) as folder:
        os.environ['TARNLAB_HOME'] = os.path.join(folder, 'lab')
        subprocess.run([options.tarnlab, 'init'], check=True, capture_output=True)
        generator = statements.Generator(rng)
        for start in range(0, options.count, options.batch):
            batch = [generator.statement() for _ in range(min(options.batch,
                                                              options.count - start))]
            got = compile_text(options.tarnioctl, options.tarnlab, folder,
                               '\n'.join(text for text, _ in batch))
            messages += compare(got, batch)
    print('%d statements, %d messages: equal' % (options.count, messages))


if __name__ == '__main__':
    main()
