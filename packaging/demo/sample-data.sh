#!/bin/bash
# Prints the commands that fill the demo's server, as redis-cli reads them: "\xHH" is a byte.
set -euo pipefail

# bytes CHARSET TEXT: the text in that charset, every byte escaped.
bytes() { printf '%s' "$2" | iconv -f utf-8 -t "$1" | od -An -v -tx1 | tr -d '\n' | sed 's/ /\\x/g'; }

cat <<END
SELECT 0
SET welcome "Click a key to see its value. Each type has a pane of its own."
SET session:8f2c "{\"user\":1042,\"theme\":\"dark\",\"basket\":[7,7,31]}" EX 1800
SET session:91ab "{\"user\":88,\"theme\":\"light\",\"basket\":[]}" EX 86400
SET counter:visits 48211
SET text:poem "The tarn lies still,\nand what you drop into it\nis found again.\n"
SET text:separators "tab\there, a carriage return\r, NUL \x00, a bell \x07 and \xe2\x80\xa8a line separator"
SET emoji "\xf0\x9f\x90\xbf \xf0\x9f\x8c\xb2 \xf0\x9f\x8f\x94"
HSET "user:7 with spaces" name "张伟" mail zhang@example.com city "北京" born 1981 language zh logins 37 roles "[\"reader\",\"editor\"]"
HSET user:12 name "Alan Kay" mail alan@example.com city Springfield born 1940 language en logins 64 roles "[\"reader\",\"editor\"]"
HSET user:31 name "Jürgen Groß" mail juergen@example.com city "Köln" born 1979 language de logins 5 roles "[\"reader\",\"editor\"]"
HSET user:42 name "Radia Perlman" mail radia@example.com city Portsmouth born 1951 language en logins 802 roles "[\"reader\",\"editor\"]"
HSET user:88 name "Grace Hopper" mail grace@example.com city "New York" born 1906 language en logins 1952 roles "[\"reader\",\"editor\"]"
HSET user:105 name "Zoë Bélanger" mail zoe@example.com city "Montréal" born 1990 language fr logins 18 roles "[\"reader\",\"editor\"]"
HSET user:233 name "Ольга Ладыженская" mail olga@example.com city "Кологрив" born 1922 language ru logins 340 roles "[\"reader\",\"editor\"]"
HSET user:377 name "Barbara Liskov" mail barbara@example.com city "Los Angeles" born 1939 language en logins 610 roles "[\"reader\",\"editor\"]"
HSET user:512 name "山田 花子" mail hanako@example.com city "京都" born 1985 language ja logins 76 roles "[\"reader\",\"editor\"]"
HSET user:610 name "Edsger Dijkstra" mail edsger@example.com city Rotterdam born 1930 language nl logins 1968 roles "[\"reader\",\"editor\"]"
HSET user:987 name "Margaret Hamilton" mail margaret@example.com city Paoli born 1936 language en logins 11 roles "[\"reader\",\"editor\"]"
HSET user:1042 name "Ada Byron" mail ada@example.com city London born 1815 language en logins 211 roles "[\"reader\",\"editor\"]"
HSET product:31 title "Folding kayak" price 1249.00 stock 3 colours "[\"red\",\"blue\"]" photo "\xff\xd8\xff\xe0\x00\x10JFIF"
EXPIRE product:31 604800
RPUSH queue:mail "to=ada@example.com subject=Welcome" "to=grace@example.com subject=Invoice" "to=ada@example.com subject=News"
SADD tags:31 water sport outdoor "two words" "\xc3\xbcberraschung"
ZADD leaderboard 9812.5 ada 9640 grace 120 linus -3 nobody 1e21 everybody
ZADD temperature 21.5 "2024-06-01" 19.25 "2024-06-02" -0.5 "2024-12-24"
EVAL "for i = 1, 100000 do redis.call('RPUSH', KEYS[1], 'row ' .. i) end return 'OK'" 1 list:100000
EVAL "for i = 1, 2000 do redis.call('SET', string.format('page:%04d', i), 'Page ' .. i) end return 'OK'" 0
EVAL "local all = {} for i = 1, 20000 do all[i] = {id = i, name = 'Item ' .. i, price = i / 4, tags = {'a', 'b'}} end return redis.call('SET', KEYS[1], cjson.encode(all))" 1 json:catalogue
EVAL "for i = 1, 5000 do redis.call('HSET', KEYS[1], 'field ' .. i, 'value ' .. i * i) end return 'OK'" 1 hash:5000

SELECT 1
SET "\x00\x01\x02\xfe\xff" "a key that is no text"
SET binary:png "\x89PNG\r\n\x1a\n\x00\x00\x00\rIHDR\x00\x00\x00\x01"
RPUSH binary:list "\xde\xad\xbe\xef" "plain text" "" "\x00"
HSET binary:hash "\xca\xfe" "\xba\xbe" text "\xff\xfe both ways"
SADD "binary:\xf0\x28\x8c\x28" "\x80" "\x81"
ZADD binary:zset 1 "\xc3\x28" 2 "\xa0\xa1"

SELECT 2
SET gbk:greeting "$(bytes gbk 你好，世界)"
HSET gbk:user "$(bytes gbk 姓名)" "$(bytes gbk 张伟)" "$(bytes gbk 城市)" "$(bytes gbk 北京)"
SET "$(bytes gbk 键名)" "$(bytes gbk 键名也是国标码)"
RPUSH big5:list "$(bytes big5 臺北)" "$(bytes big5 高雄)"
SET sjis:greeting "$(bytes shift_jis こんにちは)"
SET euckr:greeting "$(bytes euc-kr 안녕하세요)"
SADD koi8r:words "$(bytes koi8-r озеро)" "$(bytes koi8-r гора)"
SET latin1:menu "$(bytes iso-8859-1 'crème brûlée')"
SET utf16:title "$(bytes utf-16 'Ωmega')"

SELECT 5
EVAL "for i = 1, 300 do redis.call('SET', 'cache:' .. i, string.rep('x', i), 'EX', 3600 + i) end return 'OK'" 0
END
