"""The texts that the scripts about loads measure, how they run programs, and figures beside limits."""
import math
import os
import re
import statistics
import subprocess
import sys
import tempfile

failures = 0


def within(figure, limit):
    """Text of a limit after its figure; counts a failure."""
    global failures
    if limit is None:
        return ''
    if figure <= limit:
        return '(at most %s)' % format(limit, ',')
    failures += 1
    return '(ABOVE its limit of %s)' % format(limit, ',')


def filled(label):
    """A label with dots up to the figures."""
    return '%-34.34s' % (label + ' ' + '.' * 40)


def end(message):
    sys.exit('%s: %s' % (os.path.basename(sys.argv[0]), message))


# --- Texts

def parts(i):
    """Numbers of the i-th rule: its source, the block it goes to, and its port."""
    high, middle, low = i >> 16 & 255, i >> 8 & 255, i & 255
    return ('172.%d.%d.%d' % (high, middle, low), '10.%d.%d.0/24' % (middle, low), 1 + i % 65535)


def rule(kind, i):
    """The i-th rule of a kind."""
    source, block, port = parts(i)
    if kind == 'translation':
        return ('rule %d in protocol tcp from any to ip %s port %d dnat ip 192.168.%d.%d port %d' %
                (i, source, port, i >> 8 & 255, i & 255, 1 + i % 60000))
    if kind == 'ipv6':
        return ('rule %d inout protocol tcp from 2001:db8:0:1::%x to 2001:db8:%x::/48 port %d accept' %
                (i, i, i, port))
    if kind == 'options':
        return ('rule %d at %d out inet protocol tcp with {strict, dscp 0x10, flag {SYN, ACK}} from not '
                'ip %s port %d to not ip %s port {80, 443, 8000-8080} extsrcprofile "es%d" attrprofile '
                '"ap%d" accept with {log, copy, noflow} as ftp tag "tag%d"' %
                (i, i, block, port, source, i % 256, i % 256, i))
    if kind == 'ranges':
        return ('rule %d in protocol tcp from 10.0.0.1-10.0.0.6 to %s port 80-90 accept' % (i, block))
    return 'rule %d inout protocol tcp from %s to %s port %d accept' % (i, source, block, port)


def lines(kind, count):
    for i in range(1, count + 1):
        comma = ',' if i < count else ''
        if kind == 'address':
            yield '  %s%s\n' % (parts(i)[0], comma)
        elif kind == 'wide':
            yield '  0.0.0.1-255.255.255.254%s\n' % comma
        elif kind == 'attribute':
            yield '  [ FQDN : "user-%d" uuid 502e1f3a-c21a-7011-4ae1-%012x ]%s\n' % (i, i, comma)
        elif kind == 'ones':
            yield 'create addrset "one%d" with { %s };\n' % (i, parts(i)[0])
        else:
            if kind == 'hundreds' and i % 100 == 1:
                yield 'create ruleset "s%d" with {\n' % (i // 100)
            yield '  %s;\n' % rule(kind, i)
            if kind == 'hundreds' and i % 100 == 0:
                yield '};\n'


def write(path, head, body, tail):
    with open(path, 'w', encoding='ascii') as f:
        f.write(head)
        f.writelines(body)
        f.write(tail)
    return path


def text_of(folder, kind, count):
    path = os.path.join(folder, '%s-%d' % (kind, count))
    if os.path.exists(path):
        return path
    if count == 0:
        return write(path, '', (), '')
    if kind in ('hundreds', 'ones'):
        return write(path, '', lines(kind, count), '')
    what = {'address': 'addrset', 'wide': 'addrset', 'attribute': 'attrprofile'}.get(kind, 'ruleset')
    return write(path, 'create %s "large" with {\n' % what, lines(kind, count), '};\n')


# --- Runs

def timed(command):
    """CPU seconds of a run, what it started included, and what it printed; nothing if it failed."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        output = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        return None, b''
    return usage.ru_utime + usage.ru_stime, output


def medians(rounds, commands):
    """Runs the commands in turn; the median CPU seconds of each, and the last output of each."""
    seconds = [[] for _ in commands]
    outputs = [b''] * len(commands)
    for _ in range(rounds):
        for i, command in enumerate(commands):
            spent, outputs[i] = timed(command)
            if spent is None:
                end('failed: ' + ' '.join(command))
            seconds[i].append(spent)
    return [statistics.median(each) for each in seconds], outputs


def instructions(command, collect=()):
    """What callgrind counts of a run."""
    with tempfile.NamedTemporaryFile('r') as log:
        run = subprocess.run(['valgrind', '--tool=callgrind', '--callgrind-out-file=/dev/null',
                              '--log-file=' + log.name, *collect, *command],
                             stdout=subprocess.DEVNULL, check=False)
        text = log.read()
        found = re.search(r'Collected : (\d+)', text)
        if run.returncode != 0 or found is None:
            end('failed: %s\n%s' % (' '.join(command), text))
        return int(found.group(1))


def without_lines(program, folder):
    """A copy of the program, whose lines not every compiler writes so that valgrind reads them."""
    copy = os.path.join(folder, os.path.basename(program))
    subprocess.run(['objcopy', '--strip-debug', program, copy], check=True)
    return copy


def exponent(sizes, seconds):
    """Slope of the least-squares line through the logarithms."""
    xs = [math.log(n) for n in sizes]
    ys = [math.log(s) for s in seconds]
    x, y = statistics.mean(xs), statistics.mean(ys)
    return sum((a - x) * (b - y) for a, b in zip(xs, ys)) / sum((a - x) ** 2 for a in xs)
