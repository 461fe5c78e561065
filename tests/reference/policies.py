#!/usr/bin/env python3
"""Saves generated policies from filters of the lab and loads them into filters that hold nothing.

    policies.py [--count N] [--seed S] TARNIOCTL TARNLAB TARNPOLICY

For each policy: generated statements fill a filter; what is saved of it must be whole, and verified;
loaded into another filter it must give the same text again; and both filters must show the same rules
and sets to tarnioctl, which reads them by code of its own. Prints how many policies, statements and
rules that were; the first difference ends it with status 1 and leaves the texts in a folder.
"""
import argparse
import os
import random
import re
import subprocess
import sys
import tempfile

import statements

FROM, TO = 'nic-1002672-eth0-kelpco-sfw.2', 'nic-1002731-eth0-kelpco-sfw.2'


class Lab:
    def __init__(self, options, folder):
        self.options, self.folder = options, folder
        os.environ['TARNLAB_HOME'] = os.path.join(folder, 'lab')

    def run(self, *words, check=True):
        done = subprocess.run([self.options.tarnlab, 'run', *words], capture_output=True, check=False)
        if check and done.returncode != 0:
            self.fail('%s ended with %d:\n%s%s' % (' '.join(words), done.returncode,
                                                   done.stdout.decode(errors='replace'),
                                                   done.stderr.decode(errors='replace')))
        return done

    def fail(self, text):
        kept = tempfile.mkdtemp(prefix='policies-')
        for name in os.listdir(self.folder):
            if name.endswith('.conf'):
                os.rename(os.path.join(self.folder, name), os.path.join(kept, name))
        sys.exit('%s\nThe texts are in %s' % (text, kept))

    def path(self, name):
        return os.path.join(self.folder, name)

    def load(self, text, target, check=True):
        with open(self.path('load.conf'), 'w', encoding='utf-8', newline='') as f:
            f.write(text)
        return self.run(self.options.tarnioctl, 'tarnfwcli', '-Override', '-f', target, '-l',
                        self.path('load.conf'), check=check).returncode == 0

    def shown(self, command, target):
        text = self.run(self.options.tarnioctl, command, '-f', target, check=False).stdout
        # When a set was made, and for how many times, is no part of it.
        return re.sub(rb'(?m)^ *# (generation number|realization time) *:.*\n', b'', text)


def policy(generator):
    """Statements of one policy."""
    made, names = [], []
    for _ in range(generator.r.randint(1, 8)):
        kind = generator.pick('rules', 'rules', 'set', 'profile')
        if kind == 'rules':
            words, _ = generator.create_rule_set()
            names.append(words[2])
        elif kind == 'set':
            words, _ = generator.create_address_set()
        else:
            more, _ = generator.attributes()
            words = ['create', 'attrprofile', generator.quoted(generator.name(37)), 'with', '{']
            words += more + ['}']
        made.append(generator.text(words + [';']))
    if names and generator.chance(0.5):
        made.append('set jumpto of ruleset %s as %s;' % (generator.pick(*names), generator.pick(*names)))
    if names and generator.chance(0.7):
        made.append('set root ruleset %s and %s;' % (generator.pick(*names),
                                                    generator.pick('""', *names)))
    return made


def members(text):
    """What is shown, in order and each once: the kernel keeps members as they were given."""
    return sorted(set(text.splitlines()))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--count', type=int, default=200)
    parser.add_argument('--seed', type=int, default=14)
    parser.add_argument('tarnioctl')
    parser.add_argument('tarnlab')
    parser.add_argument('tarnpolicy')
    options = parser.parse_args()
    generator = statements.Generator(random.Random(options.seed))
    loaded = refused = rules = 0
    with tempfile.TemporaryDirectory() as folder:
        lab = Lab(options, folder)
        for number in range(options.count):
            subprocess.run(['rm', '-rf', os.environ['TARNLAB_HOME']], check=True)
            subprocess.run([options.tarnlab, 'init'], check=True, capture_output=True)
            for statement in policy(generator):
                # The kernel refuses a few, for instance a root that leads nowhere.
                if lab.load(statement, FROM, check=False):
                    loaded += 1
                else:
                    refused += 1
            texts = []
            for target, name in ((FROM, 'first.conf'), (TO, 'second.conf')):
                if target == TO:
                    lab.load(texts[0], TO)
                lab.run(options.tarnpolicy, 'save', '-f', target, '--verify', '-o', lab.path(name))
                with open(lab.path(name), encoding='utf-8', newline='') as f:
                    texts.append(f.read())
            if texts[0] != texts[1]:
                lab.fail('policy %d is saved in two ways' % number)
            lab.run(options.tarnpolicy, 'diff', 'filter:' + FROM, 'filter:' + TO)
            lab.run(options.tarnpolicy, 'diff', 'filter:' + FROM, lab.path('first.conf'))
            if lab.shown('getrules', FROM) != lab.shown('getrules', TO):
                lab.fail('policy %d shows other rules' % number)
            if members(lab.shown('getaddrsets', FROM)) != members(lab.shown('getaddrsets', TO)):
                lab.fail('policy %d shows other sets' % number)
            rules += len(re.findall(r'(?m)^    rule ', texts[0]))
    if refused > loaded / 10:
        sys.exit('the kernel refused %d statements of %d' % (refused, refused + loaded))
    print('%d policies of %d statements with %d rules: equal' % (options.count, loaded, rules))


if __name__ == '__main__':
    main()
