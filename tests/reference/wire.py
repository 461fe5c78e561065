"""The kernel's records, written from their layouts alone.

An independent second encoder: it shares nothing with the library, so that a mistake in a layout
cannot cancel itself out. Objects are plain tuples and dictionaries (see statements.py); every
function here gives bytes.
"""
import ipaddress
import struct

ACTION_CODE = {
    'accept': 1, 'pass': 1, 'drop': 2, 'reject': 3, 'deny': 3, 'jumpto': 4, 'punt': 5, 'divert': 6,
    'snat': 7, 'dnat': 8, 'macrewrite': 9, 'copy': 10, 'encrypt': 11, 'clear': 12, 'lb': 13,
    'pbr': 14,
}
FLAG_BIT = {'log': 0x1, 'copy': 0x2, 'noflow': 0x8, 'rtt': 0x10, 'lbrule': 0x100}
DYNAPP = {'ftp': (1, 3), 'oracle': (2, 1), 'sunrpc': (3, 5), 'dcerpc': (4, 5)}
TCP_FLAG = {'FIN': 1, 'SYN': 2, 'RST': 4, 'PSH': 8, 'ACK': 16, 'URG': 32, 'ECE': 64, 'CWR': 128,
            'NS': 256}
POOL = {'random': 2, 'round-robin': 4, 'tcp-conn-balance': 5}
DIRECTION = {'inout': 0, 'in': 1, 'out': 2}


def field(text, size):
    raw = text.encode()
    assert len(raw) < size
    return raw + bytes(size - len(raw))


def put(record, offset, data):
    record[offset:offset + len(data)] = data


def mac(text):
    return bytes(int(octet, 16) for octet in text.split(':'))


def mask4(text):
    return ipaddress.IPv4Network('0.0.0.0/' + text).prefixlen


def address(kind, value, negated=False):
    """144 bytes. kind: any ip4 ip6 range4 range6 cidr4 cidr6 ether ether_range ether_mask set."""
    record = bytearray(144)
    code = {'any': 0, 'ip4': 1, 'ip6': 2, 'range4': 3, 'range6': 4, 'cidr4': 5, 'cidr6': 6,
            'ether': 7, 'ether_range': 8, 'ether_mask': 9, 'set': 11}[kind]
    struct.pack_into('<H', record, 0, code)
    record[2] = 1 if negated else 0
    if kind == 'ip4':
        put(record, 4, ipaddress.IPv4Address(value).packed)
    elif kind == 'ip6':
        put(record, 4, ipaddress.IPv6Address(value).packed)
    elif kind == 'range4':
        put(record, 4, ipaddress.IPv4Address(value[0]).packed)
        put(record, 8, ipaddress.IPv4Address(value[1]).packed)
    elif kind == 'range6':
        put(record, 4, ipaddress.IPv6Address(value[0]).packed)
        put(record, 20, ipaddress.IPv6Address(value[1]).packed)
    elif kind == 'cidr4':
        net = ipaddress.IPv4Network('%s/%d' % value, strict=False)
        put(record, 4, net.network_address.packed)
        record[8] = net.prefixlen
    elif kind == 'cidr6':
        net = ipaddress.IPv6Network('%s/%d' % value, strict=False)
        put(record, 4, net.network_address.packed)
        record[20] = net.prefixlen
    elif kind == 'ether':
        put(record, 4, mac(value))
    elif kind in ('ether_range', 'ether_mask'):
        put(record, 4, mac(value[0]))
        put(record, 10, mac(value[1]))
    elif kind == 'set':
        put(record, 4, field(value, 38))
    return bytes(record)


def split(kind, value):
    """An address range as the blocks of its minimal cover, in order."""
    make = ipaddress.IPv4Address if kind == 'range4' else ipaddress.IPv6Address
    full = 32 if kind == 'range4' else 128
    for net in ipaddress.summarize_address_range(make(value[0]), make(value[1])):
        if net.prefixlen == full:
            yield ('ip4' if full == 32 else 'ip6', str(net.network_address))
        else:
            yield ('cidr4' if full == 32 else 'cidr6', (str(net.network_address), net.prefixlen))


def spec_header(direction, negated, kind):
    return struct.pack('<H', direction | (4 if negated else 0) | (kind << 3))


def port_block(direction, spec):
    """38 bytes. spec: None, or (negated, 'port'|'range'|'set', value)."""
    record = bytearray(38)
    if spec is None:
        return bytes(record)
    negated, kind, value = spec
    if kind == 'port':
        put(record, 0, spec_header(direction, negated, 1))
        put(record, 2, struct.pack('>H', value))
    elif kind == 'range':
        put(record, 0, spec_header(direction, negated, 2))
        put(record, 2, struct.pack('>HH', *value))
    else:
        put(record, 0, spec_header(direction, negated, 3))
        ranges = sorted({v for v in value if isinstance(v, tuple)}, key=lambda r: (r[1], r[0]))
        ports = sorted({v for v in value if not isinstance(v, tuple)})
        entries, bitmap = [], 0
        for low, high in ranges:
            bitmap |= 1 << len(entries)
            entries += [low, high]
        entries += ports
        record[2] = len(entries)
        for i, entry in enumerate(entries):
            struct.pack_into('>H', record, 4 + 2 * i, entry)
        struct.pack_into('<H', record, 34, bitmap)
    return bytes(record)


def session_block(specs):
    """56 bytes from a list of (name, negated, value)."""
    record = bytearray(56)
    word = 0
    for name, negated, value in specs:
        if name == 'stateless':
            word |= 1
        elif name == 'dscp':
            word |= value << 5
        elif name == 'strict':
            word |= 1 << 11
        elif name == 'sloppy':
            word |= 1 << 12
        elif name == 'flag':
            put(record, 4, spec_header(0, negated, 4))
            record[6] = value & 0xff
            record[7] = value >> 8
        elif name == 'icmptype':
            put(record, 4, spec_header(0, negated, 6))
            record[6] = 1
            record[10] = value
        elif name == 'typecode':
            put(record, 4, spec_header(0, negated, 6))
            record[6] = 3
            record[10], record[11] = value
        elif name == 'option':
            put(record, 12, spec_header(0, negated, 5))
            struct.pack_into('<H', record, 14, len(value))
            put(record, 16, value.encode())
    struct.pack_into('<H', record, 0, word)
    return bytes(record)


def action(a):
    """330 bytes from a dictionary: word, flags, dynapp and what the word needs."""
    record = bytearray(330)
    word = a['word']
    if word == 'jumpto':
        put(record, 0, field(a['name'], 64))
    elif word == 'macrewrite':
        put(record, 0, mac(a['mac']))
    elif word in ('snat', 'dnat'):
        put(record, 0, address(*a['address']))
        if word == 'dnat':
            bits = a.get('pool', 0) << 2
            ports = a.get('ports')
            if ports is not None:
                bits |= 1
                struct.pack_into('>H', record, 144, ports[0])
                if len(ports) == 2:
                    bits |= 2
                    struct.pack_into('>H', record, 146, ports[1])
            record[282] = bits
            struct.pack_into('<H', record, 284, a.get('pool_value', 0))
    elif word == 'lb':
        record[148] = a['type']
        struct.pack_into('<HH', record, 150, a.get('idle', 0) & 0xffff, a.get('close', 0) & 0xffff)
        if 'options' in a:
            put(record, 154, field(a['options'], 128))
            record[282] = 1 << 6
    elif word in ('encrypt', 'pbr'):
        put(record, 293, field(a['policy'], 37))
    flags = 0
    for flag in a.get('flags', ()):
        flags |= FLAG_BIT[flag]
    if a.get('dynapp'):
        app, app_flags = DYNAPP[a['dynapp']]
        flags |= 4
        struct.pack_into('<H', record, 288, app_flags | (app << 4))
    record[290] = ACTION_CODE[word]
    struct.pack_into('<H', record, 291, flags)
    return bytes(record)


IPV4 = ('ip4', 'range4', 'cidr4')
IPV6 = ('ip6', 'range6', 'cidr6')


def rule(r):
    """892 bytes. Address ranges have been replaced by set references before."""
    record = bytearray(892)
    struct.pack_into('<Ii', record, 0, r['id'], r.get('position', 0))
    flags = DIRECTION[r['direction']] << 5
    layer3, number, protocol_negated = r['protocol']
    if layer3:
        flags |= 16
    if number is not None:
        flags |= 4
        struct.pack_into('<H' if layer3 else '>H', record, 794, number)
        if protocol_negated:
            flags |= 8
    af = r.get('af', 0)
    for bit, offset, key in ((1, 12, 'source'), (2, 156, 'destination')):
        if r[key][0] != 'any':
            flags |= bit
            put(record, offset, address(*r[key]))
    if af == 0:
        for family, kinds in ((1, IPV4), (2, IPV6)):
            if r['source'][0] in kinds or r['destination'][0] in kinds:
                af = family
                record[793] |= 16
    flags |= (af & 1) << 7
    record[791] = af >> 1
    put(record, 300, port_block(1, r.get('source_port')))
    put(record, 338, port_block(2, r.get('destination_port')))
    put(record, 460, action(r['action']))
    record[790] = flags
    put(record, 796, session_block(r.get('specs', ())))
    put(record, 852, field(r.get('tag', '')[:31], 32))
    mode = 0
    if r.get('extended_source'):
        mode |= 4
        put(record, 380, field(r['extended_source'], 38))
    if r.get('profile'):
        mode |= 8
        put(record, 422, field(r['profile'], 38))
    if mode == 0:
        mode = 1
    if not flags & 7 and layer3 and mode == 1 and ACTION_CODE[r['action']['word']] == 1:
        mode = 2
    struct.pack_into('<I', record, 884, mode)
    return bytes(record)


def rule_set(name, rules):
    body = bytearray(168)
    put(body, 64, field(name, 64))
    struct.pack_into('<I', body, 136, len(rules))
    body[140] = 3
    return bytes(body) + b''.join(rule(r) for r in rules)


def address_set(name, members):
    """members: (kind, value) after ranges in braces were split and /0 blocks halved."""
    body = bytearray(86)
    put(body, 0, field(name, 38))
    six = any(kind in IPV6 for kind, _ in members)
    struct.pack_into('<III', body, 46, len(members), 1, 144 * len(members))
    body[58] = 3 | (8 if six else 0)
    return bytes(body) + b''.join(address(kind, value) for kind, value in members)


ATTRIBUTE_KEY = {'TLS_VERSION': 1, 'HTTP_PATH': 5, 'FQDN': 7, 'WIN_SID': 8, 'USER_SID': 9,
                 'CTX_PROFILE_ID': 11}


def sid(text):
    """72 bytes from "S-1-AUTHORITY-SUB-SUB..."."""
    authority, *subs = (int(part) for part in text.split('-')[2:])
    record = bytearray(72)
    record[4], record[5] = 1, len(subs)
    put(record, 6, authority.to_bytes(6, 'big'))
    for i, number in enumerate(subs):
        struct.pack_into('<I', record, 12 + 4 * i, number)
    return bytes(record)


def attribute(key, kind, value):
    """An attribute's record. kind: number, sid, or uuid with (16 bytes, text)."""
    if kind == 'number':
        code, data = 2, struct.pack('<Q', value)
    elif kind == 'sid':
        code, data = 4, sid(value)
    else:
        text = value[1].encode()
        text = text + b'\0' if text else b''
        code, data = 3, value[0] + struct.pack('<H', len(text)) + text
    return struct.pack('<HHIH', ATTRIBUTE_KEY[key], code, 10 + len(data), 0) + data


def element(record):
    """An attribute's record with the head that it has in a chain."""
    return struct.pack('<HHI', 1, 0, len(record)) + record


def chain(attributes):
    """The attributes as a chain, ordered, each once."""
    order = {}
    for key, kind, value in attributes:
        # The text of an identifier plays no part: the first one stays.
        compared = value[0] if kind == 'uuid' else value
        order.setdefault((ATTRIBUTE_KEY[key], compared), (key, kind, value))
    elements = b''.join(element(attribute(*order[at])) for at in sorted(order))
    return len(order), struct.pack('<III', 2, len(order), len(elements)) + elements


def attribute_profile(name, attributes):
    body = bytearray(86)
    count, data = chain(attributes)
    put(body, 0, field(name, 38))
    struct.pack_into('<III', body, 46, count, 2, len(data))
    body[58] = 3
    return bytes(body) + data


def connection(source, destination, ports, flags=0, protocol=0):
    """40 bytes; ports are a pair that is packed already."""
    record = bytearray(40)
    put(record, 0, ipaddress.ip_address(source).packed)
    put(record, 16, ipaddress.ip_address(destination).packed)
    put(record, 32, ports)
    record[36], record[39] = flags, protocol
    return bytes(record)


def connection_list(records):
    records = sorted(set(records))
    return struct.pack('<II', len(records), 0) + b''.join(records)


def connection_attributes(connection_record, state, attributes):
    count, data = chain(attributes)
    by_connection = connection_record is not None
    return struct.pack('<II40sI', 0, 0, connection_record or bytes(40), by_connection) + \
        struct.pack('>Q', state) + struct.pack('<II', count, len(data)) + data


def domain_addresses(uuid, name, members):
    data = element(attribute('FQDN', 'uuid', (uuid, name)))
    data += b''.join(address(kind, value) for kind, value in members)
    return struct.pack('<II', len(members), len(data)) + data


def user_map(user, sids):
    return struct.pack('<III', 0, 0, len(sids)) + sid(user) + b''.join(sid(text) for text in sids)


def spoof_guard(mac_text, members):
    records = b''.join(address(kind, value) for kind, value in members) or bytes(144)
    return mac(mac_text) + struct.pack('<HI', 0, len(members)) + records


def selector(kind, identifier='', agent='', index=0):
    """100 bytes; kind is the number of the selector type."""
    record = bytearray(100)
    put(record, 0, field(identifier, 64))
    put(record, 64, field(agent, 32))
    put(record, 96, struct.pack('<I', index)[:3])
    record[99] = kind
    return bytes(record)


def message(sequence, command, body, selector_bytes=b''):
    """What a file channel receives for one command."""
    head = b'TARN' + struct.pack('<II', len(body) + 12, sequence)
    head += struct.pack('<BBBBHH', 1, 1, 0, 1, 1, 0)
    return selector_bytes + head + struct.pack('<IHHI', len(body), command, 0, 0) + body
