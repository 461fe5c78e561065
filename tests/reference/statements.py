"""Random statements of the configuration language with the messages that they must compile to.

generate(random, count) yields (text, messages): a statement and the list of (command, body,
selector) that the kernel must be sent for it, in order. The bodies come from wire.py.
"""
import ipaddress
import struct

import wire

PROTOCOLS = {'tcp': 6, 'udp': 17, 'icmp': 1, 'gre': 47, 'esp': 50, 'ospf': 89}
NAME_CHARS = 'abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-'
STRING_CHARS = NAME_CHARS + ' :;,{}()#*/+$%'


TIMEOUTS = [
    'dfw.tcp.first_packet', 'dfw.tcp.opening', 'dfw.tcp.established', 'dfw.tcp.closing',
    'dfw.tcp.fin_wait', 'dfw.tcp.closed', 'dfw.udp.first_packet', 'dfw.udp.single',
    'dfw.udp.multiple', 'dfw.icmp.first_packet', 'dfw.icmp.error_reply', 'dfw.other.first_packet',
    'dfw.other.single', 'dfw.other.multiple', 'dfw.ip.frag', 'dfw.interval', 'dfw.adaptive_start',
    'dfw.adaptive_end', 'dfw.src_node', 'dfw.ts_diff', 'dfw.invalid_state', 'dfw.invalid_l7']


def halved(members):
    """The members with each block of all IPv4 addresses as its two halves."""
    halves = []
    for kind, value in members:
        if kind == 'cidr4' and value[1] == 0:
            halves += [('cidr4', ('0.0.0.0', 1)), ('cidr4', ('128.0.0.0', 1))]
        else:
            halves.append((kind, value))
    return halves


class Generator:
    def __init__(self, rng):
        self.r = rng
        self.last_rule = 0

    # --- words

    def pick(self, *choices):
        return self.r.choice(choices)

    def chance(self, p):
        return self.r.random() < p

    def name(self, limit):
        length = limit if self.chance(0.05) else self.r.randint(1, min(limit, 20))
        return 'n' + ''.join(self.r.choice(STRING_CHARS) for _ in range(length - 1))

    def quoted(self, text):
        return self.pick('"%s"', "'%s'") % text

    def blank(self):
        return self.pick(' ', ' ', ' ', ' ', '  ', '\t', '\n', '\r\n', ' /* c */ ', ' # c\n')

    def text(self, words):
        out = []
        for word in words:
            if out:
                out.append(self.blank())
            out.append(word)
        return ''.join(out)

    def comma(self, items):
        out = ['{']
        for i, item in enumerate(items):
            out += ([','] if i else []) + item
        if self.chance(0.2):
            out.append(',')
        return out + ['}']

    # --- addresses: (words, kind, value)

    def v4(self):
        return str(ipaddress.IPv4Address(self.r.getrandbits(32)))

    def v6(self):
        bits = self.r.getrandbits(128)
        if self.chance(0.5):
            bits &= (0xffff << 112) | self.r.getrandbits(16)
        return str(ipaddress.IPv6Address(bits))

    def mac(self):
        return ':'.join('%02x' % self.r.getrandbits(8) for _ in range(6))

    def ip_address(self, family=None):
        family = family or self.pick(4, 6)
        form = self.pick('one', 'cidr', 'range') if family == 6 else \
            self.pick('one', 'cidr', 'mask', 'range', 'short')
        if family == 4:
            if form == 'one':
                a = self.v4()
                return [a], 'ip4', a
            if form == 'cidr':
                a, p = self.v4(), self.r.randint(0, 32)
                return ['%s/%d' % (a, p)], 'cidr4', (a, p)
            if form == 'mask':
                a, p = self.v4(), self.r.randint(0, 32)
                mask = ipaddress.IPv4Network('0.0.0.0/%d' % p).netmask
                return ['%s/%s' % (a, mask)], 'cidr4', (a, p)
            if form == 'short':
                a = self.r.getrandbits(24) << 8
                low, high = sorted(self.r.sample(range(256), 2))
                first = str(ipaddress.IPv4Address(a + low))
                return (['%s-%d' % (first, high)], 'range4',
                        (first, str(ipaddress.IPv4Address(a + high))))
            low, high = sorted(self.r.sample(range(2 ** 32), 2))
            if self.chance(0.7):
                high = min(low + self.r.randint(1, 3000), 2 ** 32 - 1)
                low -= 1 if high == low else 0
            pair = (str(ipaddress.IPv4Address(low)), str(ipaddress.IPv4Address(high)))
            return ['%s-%s' % pair], 'range4', pair
        a = self.v6()
        if form == 'one':
            return [a], 'ip6', a
        if form == 'cidr':
            p = self.r.randint(0, 128)
            return ['%s/%d' % (a, p)], 'cidr6', (a, p)
        # Inside one /64, and rising in every 32-bit word, as the binary form of a range wants it.
        high = int(ipaddress.IPv6Address(a))
        third, fourth = (high >> 32) & 0xffffffff, high & 0xffffffff
        last = (high >> 64 << 64) | (self.r.randint(third, 0xffffffff) << 32) | \
            self.r.randint(fourth, 0xffffffff)
        pair = (a, str(ipaddress.IPv6Address(last)))
        return ['%s-%s' % pair], 'range6', pair

    def mac_address(self):
        form = self.pick('one', 'mask', 'range')
        a, b = self.mac(), self.mac()
        if form == 'one':
            return [a], 'ether', a
        if form == 'mask':
            return ['%s/%s' % (a, b)], 'ether_mask', (a, b)
        # The last octet weighs most in a range.
        a, b = sorted((a, b), key=lambda m: m.split(':')[::-1])
        if a == b:
            return [a], 'ether', a
        return ['%s-%s' % (a, b)], 'ether_range', (a, b)

    def rule_address(self, layer3, family):
        """(words, kind, value, negated)"""
        if self.chance(0.2):
            return ['any'], 'any', None, False
        negated = self.chance(0.2)
        if self.chance(0.25):
            name = self.name(37)
            words = [self.quoted(name)]
            if self.chance(0.7):
                words = ['addrset'] + words
            kind, value = 'set', name
        elif layer3:
            words, kind, value = self.ip_address(family)
            if self.chance(0.5):
                words = ['ip'] + words
        else:
            words, kind, value = self.mac_address()
            if self.chance(0.5):
                words = ['mac'] + words
        return (['not'] if negated else []) + words, kind, value, negated

    # --- ports and specs

    def port_spec(self):
        """(words, (negated, kind, value))"""
        negated = self.chance(0.2)
        words = ['not'] if negated else []
        kind = self.pick('port', 'range', 'set')
        if kind == 'port':
            port = self.r.randint(0, 65535)
            return words + ['port', str(port)], (negated, kind, port)
        if kind == 'range':
            pair = tuple(sorted(self.r.sample(range(65536), 2)))
            return words + ['port', '%d%s%d' % (pair[0], self.pick('-', ':'), pair[1])], \
                (negated, kind, pair)
        items, value, room = [], [], 15
        for _ in range(self.r.randint(1, 8)):
            if room >= 2 and self.chance(0.5):
                pair = tuple(sorted(self.r.sample(range(65536), 2)))
                items.append(['%d%s%d' % (pair[0], self.pick('-', ':'), pair[1])])
                value.append(pair)
                room -= 2
            else:
                port = self.r.randint(0, 65535)
                items.append([str(port)])
                value.append(port)
                room -= 1
        return words + ['port'] + self.comma(items), (negated, kind, value)

    def tcp_flags(self):
        def one():
            if self.chance(0.2):
                mask = self.r.randint(0, 0x1ff)
                return [self.pick('%d', '0x%x') % mask], mask
            word = self.r.choice(list(wire.TCP_FLAG))
            return [word], wire.TCP_FLAG[word]
        if self.chance(0.5):
            return one()
        flags = [one() for _ in range(self.r.randint(1, 4))]
        mask = 0
        for _, bit in flags:
            mask |= bit
        return self.comma([words for words, _ in flags]), mask

    def specs(self, tcp, icmp):
        """(words, [(name, negated, value)]): each kind at most once."""
        kinds = [k for k in ('stateless', 'dscp') if self.chance(0.2)]
        if tcp:
            kinds += [k for k in ('strict', 'sloppy', 'flag', 'option') if self.chance(0.25)]
        if icmp and self.chance(0.7):
            kinds.append(self.pick('icmptype', 'typecode'))
        self.r.shuffle(kinds)
        items, value = [], []
        for kind in kinds:
            negated = kind in ('flag', 'option', 'icmptype', 'typecode') and self.chance(0.3)
            words = ['not'] if negated else []
            if kind in ('stateless', 'strict', 'sloppy'):
                items.append([kind])
                value.append((kind, False, None))
            elif kind == 'dscp':
                number = self.r.randint(0, 63)
                items.append([kind, str(number) if self.chance(0.5)
                              else self.quoted('0x%x' % number)])
                value.append((kind, False, number))
            elif kind == 'flag':
                flag_words, mask = self.tcp_flags()
                items.append(words + [kind] + flag_words)
                value.append((kind, negated, mask))
            elif kind == 'option':
                option = self.name(40)
                items.append(words + [self.pick('option', 'options'), self.quoted(option)])
                value.append((kind, negated, option))
            elif kind == 'icmptype':
                number = self.r.randint(0, 255)
                items.append(words + [kind, str(number)])
                value.append((kind, negated, number))
            else:
                pair = (self.r.randint(0, 255), self.r.randint(0, 255))
                items.append(words + [kind, '%d%s%d' % (pair[0], self.pick('-', ':'), pair[1])])
                value.append((kind, negated, pair))
        if not items:
            return [], []
        if len(items) == 1 and self.chance(0.5):
            return items[0], value
        return ['with'] + self.comma(items), value

    # --- actions

    def action(self, layer3, direction, family):
        """(words, dictionary, range to become a set or None)"""
        words_of = ['accept', 'pass', 'drop', 'reject', 'deny', 'punt', 'divert', 'copy', 'clear',
                    'encrypt', 'pbr', 'jumpto', 'macrewrite']
        if layer3:
            words_of += ['dnat', 'dnat', 'dnat', 'lb', 'lb']
            if direction == 'out':
                words_of += ['snat', 'snat']
        word = self.r.choice(words_of)
        a, target, words = {'word': word}, None, [word]
        if word in ('encrypt', 'pbr'):
            h = '%032x' % self.r.getrandbits(128)
            a['policy'] = '-'.join((h[:8], h[8:12], h[12:16], h[16:20], h[20:]))
            words += ['keypolicy', self.pick(self.quoted(a['policy']), a['policy'])]
        elif word == 'jumpto':
            a['name'] = self.name(63)
            words.append(self.quoted(a['name']))
        elif word == 'macrewrite':
            a['mac'] = self.mac()
            words.append(a['mac'])
        elif word == 'snat':
            more, a['address'], target = self.nat_target(family)
            words += more
        elif word == 'dnat':
            more, a['address'], target = self.nat_target(family)
            words += more
            by_set = a['address'][0] == 'set'
            form = self.pick('none', 'port', 'range', 'pool', 'pool range') if by_set else \
                self.pick('none', 'port', 'range')
            if form == 'port':
                a['ports'] = (self.r.randint(0, 65535),)
                words += ['port', str(a['ports'][0])]
            elif form in ('range', 'pool range'):
                a['ports'] = tuple(sorted(self.r.sample(range(65536), 2)))
                words += ['port', '%d-%d' % a['ports']]
            if form.startswith('pool'):
                option = self.r.choice(list(wire.POOL))
                a['pool'] = wire.POOL[option]
                words += ['poolopt', option]
                if self.chance(0.5):
                    a['pool_value'] = self.r.randint(0, 65535)
                    words.append(str(a['pool_value']))
        elif word == 'lb':
            a['type'] = self.r.randint(0, 1)
            words += ['lbtype', 'l7' if a['type'] else 'l4']
            for key, name in (('idle', 'lbidletimeout'), ('close', 'lbclosetimeout')):
                if self.chance(0.5):
                    a[key] = self.r.randint(0, 70000)
                    words += [name, str(a[key])]
            if self.chance(0.5):
                a['options'] = self.name(127)
                words += ['lboptions', self.quoted(a['options'])]
        flags = [f for f in ('log', 'copy', 'noflow', 'rtt', 'lbrule') if self.chance(0.2)]
        if flags:
            self.r.shuffle(flags)
            a['flags'] = flags
            if len(flags) == 1 and self.chance(0.5):
                words += ['with', flags[0]]
            else:
                words += ['with'] + self.comma([[f] for f in flags])
        if self.chance(0.1):
            a['dynapp'] = self.r.choice(list(wire.DYNAPP))
            words += ['as', self.pick(a['dynapp'], a['dynapp'].upper())]
        return words, a, target

    def nat_target(self, family):
        if self.chance(0.3):
            name = self.name(37)
            return ['addrset', self.quoted(name)], ('set', name, False), None
        words, kind, value = self.ip_address(family)
        if kind.startswith('range'):
            return ['ip'] + words, (kind, value, False), (kind, value)
        return ['ip'] + words, (kind, value, False), None

    # --- rules

    def rule(self):
        """(words, record dictionary, [messages of generated sets])"""
        self.last_rule += 1
        r = {'id': self.last_rule}
        words = ['rule', str(r['id'])]
        if self.chance(0.3):
            r['position'] = self.r.randint(0, 2 ** 31 - 1)
            words += ['at', str(r['position'])]
        r['direction'] = self.pick('inout', 'in', 'out')
        words.append(r['direction'])
        family = self.pick(4, 6)
        layer3 = self.chance(0.8)
        if layer3 and self.chance(0.2):
            r['af'] = 1 if family == 4 else 2
            words.append('inet' if family == 4 else 'inet6')
        number, negated, name = None, False, None
        if layer3:
            kind = self.pick('any', 'tcp', 'udp', 'tcp', 'udp', 'icmp', 'name', 'number')
            if kind == 'any':
                words += ['protocol', 'any']
            else:
                name = kind if kind in PROTOCOLS else self.r.choice(list(PROTOCOLS))
                number = PROTOCOLS[name] if kind != 'number' else self.r.randint(0, 255)
                negated = kind in ('name', 'number') and self.chance(0.3)
                words += (['not'] if negated else []) + \
                    ['protocol', str(number) if kind == 'number' else self.pick(name, '"%s"' % name)]
        elif self.chance(0.3):
            words += ['ethertype', 'any']
        else:
            number, negated = self.r.randint(0, 65535), self.chance(0.2)
            words += (['not'] if negated else []) + \
                ['ethertype', self.pick('%d', '0x%04x') % number]
        r['protocol'] = (layer3, number, negated)
        tcp = layer3 and number == 6 and not negated
        udp = layer3 and number == 17 and not negated
        icmp = layer3 and number in (1, 58) and not negated
        more, r['specs'] = self.specs(tcp, icmp)
        words += more
        generated = []
        for side, keyword, prefix in (('source', 'from', 'src'), ('destination', 'to', 'dst')):
            more, kind, value, address_negated = self.rule_address(layer3, family)
            words += [keyword] + more
            if kind.startswith('range'):
                # Kernel sets hold blocks, so that a range becomes a set named after the rule.
                set_name = '%s%d' % (prefix, r['id'])
                generated.append((13, wire.address_set(set_name, list(wire.split(kind, value))),
                                  b''))
                kind, value = 'set', set_name
            r[side] = (kind, value, address_negated)
            if (tcp or udp) and self.chance(0.5):
                more, r[side + '_port'] = self.port_spec()
                words += more
        if self.chance(0.1):
            r['extended_source'] = self.name(37)
            words += ['extsrcprofile', self.quoted(r['extended_source'])]
        if self.chance(0.1):
            r['profile'] = self.name(37)
            words += ['attrprofile', self.quoted(r['profile'])]
        more, a, target = self.action(layer3, r['direction'], family)
        words += more
        if target is not None:
            set_name = 'target%d' % r['id']
            generated.append((13, wire.address_set(set_name, list(wire.split(*target))), b''))
            a['address'] = ('set', set_name, False)
        r['action'] = a
        if self.chance(0.2):
            r['tag'] = self.name(40)
            words += ['tag', self.quoted(r['tag'])]
        return words, r, generated

    # --- statements

    def selector(self):
        """(words, bytes)"""
        if self.chance(0.6):
            return [], b''
        word = self.pick('of', 'to')
        kind = self.pick('filter', 'filter', 'vif', 'dvsport', 'vnic', 'dvswitch', 'dvsport text')
        raw = bytes(self.r.getrandbits(8) for _ in range(16))
        h = raw.hex()
        normal = '-'.join((h[:8], h[8:12], h[12:16], h[16:20], h[20:]))
        gfy = '%s-%s' % (raw[:8].hex(' '), raw[8:].hex(' '))
        if kind == 'filter':
            name = self.name(63)
            return [word, kind, self.quoted(name)], wire.selector(7, name)
        if kind == 'vif':
            return [word, kind, self.quoted(normal)], wire.selector(8, normal)
        if kind == 'dvswitch':
            index = self.r.randint(0, 0xffffff)
            return [word, kind, self.quoted(gfy), 'port', str(index)], \
                wire.selector(2, gfy, index=index)
        number = 1 if kind == 'vnic' else 2
        keyword = kind.split()[0]
        index = self.r.randint(0, 999)
        if kind == 'dvsport text':
            return [word, keyword, self.quoted('%s.%03d' % (normal, index))], \
                wire.selector(number, gfy, index=index)
        return [word, keyword, '%s%s%d' % (normal, self.pick(':', '.'), index)], \
            wire.selector(number, gfy, index=index)

    def create_rule_set(self, rules=None):
        name = self.name(63)
        where, selector = self.selector()
        words = ['create', 'ruleset', self.quoted(name)] + where
        count = self.r.choice((0, 1, 1, 1, 2, 5)) if rules is None else rules
        made = [self.rule() for _ in range(count)]
        messages = [m for _, _, generated in made for m in generated]
        records = [r for _, r, _ in made]
        if count == 1 and self.chance(0.5):
            words += ['with'] + made[0][0]
        elif count:
            body = ['{']
            for rule_words, _, _ in made:
                body += rule_words + [';']
            if not where and self.chance(0.2):
                words += ['jumpto', self.quoted(self.name(63)), 'with']
            elif self.chance(0.7):
                words.append('with')
            words += body + ['}']
        messages.append((3, wire.rule_set(name, records), selector))
        return words, messages

    def create_address_set(self):
        name = self.name(37)
        where, selector = self.selector()
        words = ['create', 'addrset', self.quoted(name)] + where
        form = self.pick('ip', 'ip', 'ip list', 'ip list', 'mac', 'mac list', 'any', 'none', 'empty')
        members, body = [], []
        if form in ('ip', 'mac'):
            make = self.ip_address if form == 'ip' else self.mac_address
            body, kind, value = make()
            members = [(kind, value)]
        elif form == 'any':
            body, members = ['any'], [('any', None)]
        elif form == 'empty':
            body = ['{', '}']
        elif form != 'none':
            make = self.ip_address if form == 'ip list' else self.mac_address
            items = [make() for _ in range(self.r.randint(1, 8))]
            body = self.comma([item[0] for item in items])
            for _, kind, value in items:
                members += wire.split(kind, value) if kind in ('range4', 'range6') \
                    else [(kind, value)]
        if body and self.chance(0.7):
            words.append('with')
        return words + body, [(13, wire.address_set(name, halved(members)), selector)]

    def named(self, words, command, name_size, size, limit=None):
        """A statement with one name whose request is the name in a zeroed body."""
        name = self.name((limit or name_size) - 1)
        where, selector = self.selector()
        body = bytearray(size)
        wire.put(body, 0, wire.field(name, name_size))
        return words + [self.quoted(name)] + where, body, command, selector

    def simple(self):
        kind = self.r.randint(0, 15)
        if kind == 0:
            words, body, command, selector = self.named(['destroy', 'ruleset'], 7, 64, 64)
        elif kind == 1:
            words, body, command, selector = self.named(['clear', 'rule', 'of', 'ruleset'], 6, 64,
                                                        72)
        elif kind == 2:
            words, body, command, selector = self.named(['describe', 'info', 'of', 'ruleset'], 9,
                                                        64, 84)
        elif kind == 3:
            number, word = self.r.choice([(0, []), (1, ['snat']), (2, ['dnat'])])
            words, body, command, selector = self.named(
                ['describe'] + word + ['rule', 'count', 'of', 'ruleset'], 8, 64, 72)
            body[64] = number
        elif kind == 4:
            words, body, command, selector = self.named(['destroy', 'addrset'], 14, 38, 42)
        elif kind == 5:
            words, body, command, selector = self.named(['delete', 'all', 'from', 'addrset'], 64,
                                                        38, 46)
        elif kind == 6:
            words, body, command, selector = self.named(['describe', 'size', 'of', 'addrset'], 15,
                                                        38, 50)
        elif kind == 7:
            words, body, command, selector = self.named(['describe', 'info', 'of', 'addrset'], 16,
                                                        38, 58)
        elif kind == 8:
            words, body, command, selector = self.named(['clear', 'jumpto', 'of', 'ruleset'], 63,
                                                        64, 64)
        elif kind == 9:
            words, body, command, selector = self.named(['describe', 'jumpto', 'of', 'ruleset'],
                                                        62, 64, 128)
        elif kind == 10:
            name, jump = self.name(63), self.name(63)
            where, selector = self.selector()
            words = ['set', 'jumpto', 'of', 'ruleset', self.quoted(name), 'as',
                     self.quoted(jump)] + where
            body, command = wire.field(name, 64) + wire.field(jump, 64), 61
        elif kind == 11:
            return self.set_root()
        else:
            fixed = {
                12: (['clear', 'root', 'ruleset'], 36, bytes(4)),
                13: (['destroy', 'all', 'ruleset'], 60, bytes(4)),
                14: (['destroy', 'all', 'addrset'], 65, bytes(4)),
                15: (['enable', 'shared', 'addrset'], 44, struct.pack('<I', 1)),
            }
            words, command, body = fixed[kind]
            where, selector = self.selector()
            words = words + where
        return words, [(command, bytes(body), selector)]

    def set_root(self):
        where, selector = self.selector()
        if self.chance(0.5):
            first = self.name(60)
            second = first + '_L2'
            words = ['set', 'root', 'ruleset', self.quoted(first)]
        else:
            first, second = self.name(63), self.name(63)
            if self.chance(0.3):
                first, second = self.r.choice([('', second), (first, '')])
            words = ['set', 'root', 'ruleset', self.quoted(first), 'and', self.quoted(second)]
        rules = []
        for layer3, target in ((True, first), (False, second)):
            if target:
                rules.append({
                    'id': len(rules) + 1, 'position': len(rules) + 1, 'direction': 'inout',
                    'protocol': (layer3, None, False), 'specs': [('stateless', False, None)],
                    'source': ('any', None), 'destination': ('any', None),
                    'action': {'word': 'jumpto', 'name': target}})
        return words + where, [(3, wire.rule_set('', rules), selector)]

    # --- settings

    def ip_members(self, in_braces):
        """(words, members) of a list of IP addresses as the kernel gets it."""
        if in_braces:
            items = [self.ip_address() for _ in range(self.r.randint(1, 4))]
            words = self.comma([item[0] for item in items])
            members = []
            for _, kind, value in items:
                members += wire.split(kind, value) if kind in ('range4', 'range6') \
                    else [(kind, value)]
        else:
            words, kind, value = self.ip_address()
            members = [(kind, value)]
        return words, halved(members)

    def setting(self):
        """(words, command, body) of a statement that ends with its selector."""
        kind = self.r.randint(0, 9)
        if kind == 0:
            version = self.r.getrandbits(32)
            return ['set', 'exportver', str(version)], 54, struct.pack('<I', version)
        if kind == 1:
            mac = self.mac()
            words = ['create', 'spoofguard', 'with']
            if self.chance(0.3):
                name = self.name(37)
                words += ['addrset', self.quoted(name)]
                members = [('set', name)]
            else:
                list_words, members = self.ip_members(self.chance(0.6))
                words += ['ip'] + list_words
            return words + ['and', 'mac', mac], 25, wire.spoof_guard(mac, members)
        if kind == 2:
            mac = self.mac()
            return ['delete', 'spoofguard', 'with', 'mac', mac], 26, wire.mac(mac) + bytes(2)
        if kind == 3:
            verb, command, number = self.r.choice(
                [('enable', 58, 1), ('disable', 58, 0), ('describe', 59, 0)])
            tcp = self.pick('tcp', 'TCP', '"Tcp"')
            return [verb, tcp, 'strict'], command, struct.pack('<I', number)
        if kind in (4, 5):
            number, value = self.r.randrange(22), self.r.getrandbits(32)
            name = self.quoted(self.pick(str, str.upper)(TIMEOUTS[number]))
            body = bytearray(112)
            body[88 + number] = 1
            if kind == 5:
                return ['describe', 'timeout', name], 42, body
            struct.pack_into('<I', body, 4 * number, value)
            return ['set', 'timeout', name, 'to', str(value)], 41, body
        if kind == 6:
            values = [self.r.getrandbits(32) for _ in range(22)]
            text = self.pick(' ', ',', ':', '\t').join(str(value) for value in values)
            body = struct.pack('<22I', *values) + b'\1' * 22 + bytes(2)
            return ['set', 'timeout', 'to', self.quoted(text)], 41, body
        if kind == 7:
            word, half = self.r.choice([('dp', 1), ('"DP"', 1), ('pf', 1), ('Cp', 2)])
            level = self.r.randint(0, 15)
            return ['debug', word, str(level)], 32, bytes((half, 0, 0, level))
        if kind == 8:
            name = self.name(37)
            words, attributes = self.attributes()
            # The selector stands in the middle of this one.
            return ['create', 'attrprofile', self.quoted(name), None, 'with', '{'] + words + ['}'], \
                75, wire.attribute_profile(name, attributes)
        words, command, body = self.r.choice([
            (['describe', 'exportver'], 55, bytes(4)),
            (['delete', 'spoofguard'], 26, bytes(8)),
            (['describe', 'stat', 'of', 'spoofguard'], 28, bytes(56)),
            (['describe', 'stat', 'of', 'kif'], 29, bytes(1642)),
            (['clear', 'stat', 'of', 'kif'], 30, bytes(1642)),
            (['describe', 'timeout'], 42, bytes(88) + b'\1' * 22 + bytes(2)),
            (['describe', 'config', 'of', 'lb'], 86, struct.pack('<I', 81) + bytes(77)),
            (['describe', 'stat', 'of', 'lb'], 88, bytes(4141))])
        return words, command, body

    # --- attributes and connections

    def sid(self):
        numbers = [self.r.getrandbits(48)] + [self.r.getrandbits(32)
                                              for _ in range(self.r.randint(0, 15))]
        return '-'.join(['S', '1'] + [str(number) for number in numbers])

    def named_uuid(self):
        """(words, (16 bytes, name))"""
        raw = bytes(self.r.getrandbits(8) for _ in range(16))
        h = raw.hex()
        text = '-'.join((h[:8], h[8:12], h[12:16], h[16:20], h[20:]))
        name = self.name(40) if self.chance(0.5) else ''
        return ([self.quoted(name)] if name else []) + ['uuid', self.quoted(text)], (raw, name)

    def attributes(self):
        """(words, attributes) of one or more pairs of brackets."""
        words, made = [], []
        for i in range(self.r.randint(1, 3)):
            kind = self.pick('name', 'number', 'sid', 'uuid')
            key = {'name': 'TLS_VERSION', 'number': 'TLS_VERSION'}.get(kind) or \
                (self.pick('WIN_SID', 'USER_SID') if kind == 'sid' else
                 self.pick('HTTP_PATH', 'FQDN', 'CTX_PROFILE_ID'))
            words += ([','] if i else []) + ['[', self.quoted(key), ':']
            for j in range(self.r.randint(1, 3)):
                words += [','] if j else []
                if kind == 'uuid':
                    value_words, value = self.named_uuid()
                    words += value_words
                elif kind == 'sid':
                    value = self.sid()
                    words.append(self.quoted(value))
                else:
                    value = self.r.randint(769, 772)
                    words.append(str(value) if kind == 'number' else 'TLS_V1%d' % (value - 769))
                made.append((key, 'number' if kind == 'name' else kind, value))
            words.append(']')
        return words, made

    def port_number(self):
        return self.r.getrandbits(16)

    def single_connection(self):
        """(words, 40 bytes)"""
        words, ends = [], []
        with_colon = self.chance(0.5)
        for word in ('from', 'to'):
            text = 'any' if self.chance(0.2) else self.v4()
            port = self.port_number()
            words += [word, '%s:%d' % (text, port)] if with_colon else \
                [word, text, 'port', str(port)]
            ends.append(('255.255.255.255' if text == 'any' else text, port))
        (source, first), (destination, second) = ends
        return words, wire.connection(source, destination, struct.pack('<HH', first, second))

    def connection_statement(self):
        kind = self.r.randint(0, 6)
        where, selector = self.selector()
        if kind < 4:
            words, command, body = [
                (['describe', 'connection', 'count'], 23, bytes(16)),
                (['set', 'connection'], 66, bytes(84)),
                (['set', 'all', 'connection'], 67, bytes(4)),
                (['clear', 'all', 'connection'], 43, bytes(4))][kind]
            return words + where, [(command, body, selector)]
        if kind == 4:
            words, record = self.single_connection()
            records = [record]
        else:
            words, records = ['{'], []
            for i in range(self.r.randint(1, 4)):
                more, record = self.single_connection()
                words += ([','] if i else []) + more
                records.append(record)
            words.append('}')
        return ['set', 'connection'] + where + ['with'] + words, \
            [(37, wire.connection_list(records), selector)]

    def identity_statement(self):
        where, selector = self.selector()
        kind = self.r.randint(0, 2)
        if kind == 0:
            uuid_words, (raw, name) = self.named_uuid()
            words, members = self.ip_members(self.chance(0.6))
            return ['add', 'domain2ip'] + where + uuid_words + ['with', '{'] + words + ['}'], \
                [(76, wire.domain_addresses(raw, name, members), selector)]
        if kind == 1:
            user, sids = self.sid(), [self.sid() for _ in range(self.r.randint(1, 4))]
            listed = [self.quoted(sids[0])]
            for text in sids[1:]:
                listed += [',', self.quoted(text)]
            return ['set', 'uid2sidmap'] + where + [self.quoted(user), '{'] + listed + ['}'], \
                [(80, wire.user_map(user, sids), selector)]
        words, attributes = self.attributes()
        record, state, description = None, 0, []
        if self.chance(0.6):
            six = self.chance(0.5)
            source, destination = (self.v6(), self.v6()) if six else (self.v4(), self.v4())
            first, second = self.port_number(), self.port_number()
            protocol = self.r.choice(sorted(PROTOCOLS))
            direction, bits = self.r.choice([('dir_in', 2), ('dir_out', 4), ('both', 0)])
            record = wire.connection(source, destination, struct.pack('>HH', first, second),
                                     bits | six, PROTOCOLS[protocol])
            description = [source, str(first), destination, str(second), self.quoted(protocol),
                           direction]
        else:
            state = self.r.getrandbits(63) or 1
            description = [str(state)]
        return ['set', 'connattr'] + where + description + ['with', '{'] + words + ['}'], \
            [(73, wire.connection_attributes(record, state, attributes), selector)]

    def with_selector(self, words, command, body):
        """The statement with its selector at the end, or where None stands."""
        where, selector = self.selector()
        at = words.index(None) if None in words else len(words)
        return words[:at] + where + words[at + 1:], [(command, bytes(body), selector)]

    def statement(self):
        kind = self.r.random()
        if kind < 0.45:
            words, messages = self.create_rule_set()
        elif kind < 0.65:
            words, messages = self.create_address_set()
        elif kind < 0.8:
            words, messages = self.simple()
        elif kind < 0.9:
            words, messages = self.with_selector(*self.setting())
        elif kind < 0.95:
            words, messages = self.connection_statement()
        else:
            words, messages = self.identity_statement()
        return self.text(words + [';']), messages


def generate(rng, count):
    generator = Generator(rng)
    for _ in range(count):
        yield generator.statement()
