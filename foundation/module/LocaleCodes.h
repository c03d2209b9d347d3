// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The codes of ISO 639-1 (languages) and ISO 3166-1 (countries) with their English names, in the order of
// the names. Names are ASCII, so that they can be literals. Made by scripts/make-tables --locale.

// clang-format off
#define TONALIGN_LANGUAGES(X) \
    X(AB, "Abkhazian") \
    X(AA, "Afar") \
    X(AF, "Afrikaans") \
    X(AK, "Akan") \
    X(SQ, "Albanian") \
    X(AM, "Amharic") \
    X(AR, "Arabic") \
    X(AN, "Aragonese") \
    X(HY, "Armenian") \
    X(AS, "Assamese") \
    X(AV, "Avaric") \
    X(AE, "Avestan") \
    X(AY, "Aymara") \
    X(AZ, "Azerbaijani") \
    X(BM, "Bambara") \
    X(BA, "Bashkir") \
    X(EU, "Basque") \
    X(BE, "Belarusian") \
    X(BN, "Bengali") \
    X(BH, "Bihari languages") \
    X(BI, "Bislama") \
    X(BS, "Bosnian") \
    X(BR, "Breton") \
    X(BG, "Bulgarian") \
    X(MY, "Burmese") \
    X(CA, "Catalan") \
    X(KM, "Central Khmer") \
    X(CH, "Chamorro") \
    X(CE, "Chechen") \
    X(NY, "Chichewa") \
    X(ZH, "Chinese") \
    X(CU, "Church Slavic") \
    X(CV, "Chuvash") \
    X(KW, "Cornish") \
    X(CO, "Corsican") \
    X(CR, "Cree") \
    X(HR, "Croatian") \
    X(CS, "Czech") \
    X(DA, "Danish") \
    X(DV, "Divehi") \
    X(NL, "Dutch") \
    X(DZ, "Dzongkha") \
    X(EN, "English") \
    X(EO, "Esperanto") \
    X(ET, "Estonian") \
    X(EE, "Ewe") \
    X(FO, "Faroese") \
    X(FJ, "Fijian") \
    X(FI, "Finnish") \
    X(FR, "French") \
    X(FF, "Fulah") \
    X(GD, "Gaelic") \
    X(GL, "Galician") \
    X(LG, "Ganda") \
    X(KA, "Georgian") \
    X(DE, "German") \
    X(EL, "Greek") \
    X(GN, "Guarani") \
    X(GU, "Gujarati") \
    X(HT, "Haitian") \
    X(HA, "Hausa") \
    X(HE, "Hebrew") \
    X(HZ, "Herero") \
    X(HI, "Hindi") \
    X(HO, "Hiri Motu") \
    X(HU, "Hungarian") \
    X(IS, "Icelandic") \
    X(IO, "Ido") \
    X(IG, "Igbo") \
    X(ID, "Indonesian") \
    X(IA, "Interlingua") \
    X(IE, "Interlingue") \
    X(IU, "Inuktitut") \
    X(IK, "Inupiaq") \
    X(GA, "Irish") \
    X(IT, "Italian") \
    X(JA, "Japanese") \
    X(JV, "Javanese") \
    X(KL, "Kalaallisut") \
    X(KN, "Kannada") \
    X(KR, "Kanuri") \
    X(KS, "Kashmiri") \
    X(KK, "Kazakh") \
    X(KI, "Kikuyu") \
    X(RW, "Kinyarwanda") \
    X(KY, "Kirghiz") \
    X(KV, "Komi") \
    X(KG, "Kongo") \
    X(KO, "Korean") \
    X(KJ, "Kuanyama") \
    X(KU, "Kurdish") \
    X(LO, "Lao") \
    X(LA, "Latin") \
    X(LV, "Latvian") \
    X(LI, "Limburgan") \
    X(LN, "Lingala") \
    X(LT, "Lithuanian") \
    X(LU, "Luba-Katanga") \
    X(LB, "Luxembourgish") \
    X(MK, "Macedonian") \
    X(MG, "Malagasy") \
    X(MS, "Malay") \
    X(ML, "Malayalam") \
    X(MT, "Maltese") \
    X(GV, "Manx") \
    X(MI, "Maori") \
    X(MR, "Marathi") \
    X(MH, "Marshallese") \
    X(MN, "Mongolian") \
    X(NA, "Nauru") \
    X(NV, "Navajo") \
    X(NG, "Ndonga") \
    X(NE, "Nepali") \
    X(ND, "North Ndebele") \
    X(SE, "Northern Sami") \
    X(NO, "Norwegian") \
    X(NB, "Norwegian Bokmal") \
    X(NN, "Norwegian Nynorsk") \
    X(OC, "Occitan") \
    X(OJ, "Ojibwa") \
    X(OR, "Oriya") \
    X(OM, "Oromo") \
    X(OS, "Ossetian") \
    X(PI, "Pali") \
    X(PA, "Panjabi") \
    X(FA, "Persian") \
    X(PL, "Polish") \
    X(PT, "Portuguese") \
    X(PS, "Pushto") \
    X(QU, "Quechua") \
    X(RO, "Romanian") \
    X(RM, "Romansh") \
    X(RN, "Rundi") \
    X(RU, "Russian") \
    X(SM, "Samoan") \
    X(SG, "Sango") \
    X(SA, "Sanskrit") \
    X(SC, "Sardinian") \
    X(SR, "Serbian") \
    X(SN, "Shona") \
    X(II, "Sichuan Yi") \
    X(SD, "Sindhi") \
    X(SI, "Sinhala") \
    X(SK, "Slovak") \
    X(SL, "Slovenian") \
    X(SO, "Somali") \
    X(NR, "South Ndebele") \
    X(ST, "Southern Sotho") \
    X(ES, "Spanish") \
    X(SU, "Sundanese") \
    X(SW, "Swahili") \
    X(SS, "Swati") \
    X(SV, "Swedish") \
    X(TL, "Tagalog") \
    X(TY, "Tahitian") \
    X(TG, "Tajik") \
    X(TA, "Tamil") \
    X(TT, "Tatar") \
    X(TE, "Telugu") \
    X(TH, "Thai") \
    X(BO, "Tibetan") \
    X(TI, "Tigrinya") \
    X(TO, "Tonga") \
    X(TS, "Tsonga") \
    X(TN, "Tswana") \
    X(TR, "Turkish") \
    X(TK, "Turkmen") \
    X(TW, "Twi") \
    X(UG, "Uighur") \
    X(UK, "Ukrainian") \
    X(UR, "Urdu") \
    X(UZ, "Uzbek") \
    X(VE, "Venda") \
    X(VI, "Vietnamese") \
    X(VO, "Volapuk") \
    X(WA, "Walloon") \
    X(CY, "Welsh") \
    X(FY, "Western Frisian") \
    X(WO, "Wolof") \
    X(XH, "Xhosa") \
    X(YI, "Yiddish") \
    X(YO, "Yoruba") \
    X(ZA, "Zhuang") \
    X(ZU, "Zulu")

#define TONALIGN_COUNTRIES(X) \
    X(AF, "Afghanistan") \
    X(AX, "Aland Islands") \
    X(AL, "Albania") \
    X(DZ, "Algeria") \
    X(AS, "American Samoa") \
    X(AD, "Andorra") \
    X(AO, "Angola") \
    X(AI, "Anguilla") \
    X(AQ, "Antarctica") \
    X(AG, "Antigua and Barbuda") \
    X(AR, "Argentina") \
    X(AM, "Armenia") \
    X(AW, "Aruba") \
    X(AU, "Australia") \
    X(AT, "Austria") \
    X(AZ, "Azerbaijan") \
    X(BS, "Bahamas") \
    X(BH, "Bahrain") \
    X(BD, "Bangladesh") \
    X(BB, "Barbados") \
    X(BY, "Belarus") \
    X(BE, "Belgium") \
    X(BZ, "Belize") \
    X(BJ, "Benin") \
    X(BM, "Bermuda") \
    X(BT, "Bhutan") \
    X(BO, "Bolivia") \
    X(BQ, "Bonaire, Sint Eustatius and Saba") \
    X(BA, "Bosnia and Herzegovina") \
    X(BW, "Botswana") \
    X(BV, "Bouvet Island") \
    X(BR, "Brazil") \
    X(IO, "British Indian Ocean Territory") \
    X(VG, "British Virgin Islands") \
    X(BN, "Brunei Darussalam") \
    X(BG, "Bulgaria") \
    X(BF, "Burkina Faso") \
    X(BI, "Burundi") \
    X(CV, "Cabo Verde") \
    X(KH, "Cambodia") \
    X(CM, "Cameroon") \
    X(CA, "Canada") \
    X(KY, "Cayman Islands") \
    X(CF, "Central African Republic") \
    X(TD, "Chad") \
    X(CL, "Chile") \
    X(CN, "China") \
    X(CX, "Christmas Island") \
    X(CC, "Cocos Islands") \
    X(CO, "Colombia") \
    X(KM, "Comoros") \
    X(CG, "Congo") \
    X(CK, "Cook Islands") \
    X(CR, "Costa Rica") \
    X(CI, "Cote d'Ivoire") \
    X(HR, "Croatia") \
    X(CU, "Cuba") \
    X(CW, "Curacao") \
    X(CY, "Cyprus") \
    X(CZ, "Czechia") \
    X(DK, "Denmark") \
    X(DJ, "Djibouti") \
    X(DM, "Dominica") \
    X(DO, "Dominican Republic") \
    X(EC, "Ecuador") \
    X(EG, "Egypt") \
    X(SV, "El Salvador") \
    X(GQ, "Equatorial Guinea") \
    X(ER, "Eritrea") \
    X(EE, "Estonia") \
    X(SZ, "Eswatini") \
    X(ET, "Ethiopia") \
    X(FK, "Falkland Islands") \
    X(FO, "Faroe Islands") \
    X(FM, "Federated States of Micronesia") \
    X(FJ, "Fiji") \
    X(FI, "Finland") \
    X(FR, "France") \
    X(GF, "French Guiana") \
    X(PF, "French Polynesia") \
    X(TF, "French Southern Territories") \
    X(GA, "Gabon") \
    X(GM, "Gambia") \
    X(GE, "Georgia") \
    X(DE, "Germany") \
    X(GH, "Ghana") \
    X(GI, "Gibraltar") \
    X(GR, "Greece") \
    X(GL, "Greenland") \
    X(GD, "Grenada") \
    X(GP, "Guadeloupe") \
    X(GU, "Guam") \
    X(GT, "Guatemala") \
    X(GG, "Guernsey") \
    X(GN, "Guinea") \
    X(GW, "Guinea-Bissau") \
    X(GY, "Guyana") \
    X(HT, "Haiti") \
    X(HM, "Heard Island and McDonald Islands") \
    X(VA, "Holy See") \
    X(HN, "Honduras") \
    X(HK, "Hong Kong") \
    X(HU, "Hungary") \
    X(IS, "Iceland") \
    X(IN, "India") \
    X(ID, "Indonesia") \
    X(IR, "Iran") \
    X(IQ, "Iraq") \
    X(IE, "Ireland") \
    X(IM, "Isle of Man") \
    X(IL, "Israel") \
    X(IT, "Italy") \
    X(JM, "Jamaica") \
    X(JP, "Japan") \
    X(JE, "Jersey") \
    X(JO, "Jordan") \
    X(KZ, "Kazakhstan") \
    X(KE, "Kenya") \
    X(KI, "Kiribati") \
    X(KW, "Kuwait") \
    X(KG, "Kyrgyzstan") \
    X(LA, "Laos") \
    X(LV, "Latvia") \
    X(LB, "Lebanon") \
    X(LS, "Lesotho") \
    X(LR, "Liberia") \
    X(LY, "Libya") \
    X(LI, "Liechtenstein") \
    X(LT, "Lithuania") \
    X(LU, "Luxembourg") \
    X(MO, "Macao") \
    X(MG, "Madagascar") \
    X(MW, "Malawi") \
    X(MY, "Malaysia") \
    X(MV, "Maldives") \
    X(ML, "Mali") \
    X(MT, "Malta") \
    X(MH, "Marshall Islands") \
    X(MQ, "Martinique") \
    X(MR, "Mauritania") \
    X(MU, "Mauritius") \
    X(YT, "Mayotte") \
    X(MX, "Mexico") \
    X(MD, "Moldova") \
    X(MC, "Monaco") \
    X(MN, "Mongolia") \
    X(ME, "Montenegro") \
    X(MS, "Montserrat") \
    X(MA, "Morocco") \
    X(MZ, "Mozambique") \
    X(MM, "Myanmar") \
    X(NA, "Namibia") \
    X(NR, "Nauru") \
    X(NP, "Nepal") \
    X(NL, "Netherlands") \
    X(NC, "New Caledonia") \
    X(NZ, "New Zealand") \
    X(NI, "Nicaragua") \
    X(NE, "Niger") \
    X(NG, "Nigeria") \
    X(NU, "Niue") \
    X(NF, "Norfolk Island") \
    X(KP, "North Korea") \
    X(MK, "North Macedonia") \
    X(MP, "Northern Mariana Islands") \
    X(NO, "Norway") \
    X(OM, "Oman") \
    X(PK, "Pakistan") \
    X(PW, "Palau") \
    X(PA, "Panama") \
    X(PG, "Papua New Guinea") \
    X(PY, "Paraguay") \
    X(PE, "Peru") \
    X(PH, "Philippines") \
    X(PN, "Pitcairn") \
    X(PL, "Poland") \
    X(PT, "Portugal") \
    X(PR, "Puerto Rico") \
    X(QA, "Qatar") \
    X(RE, "Reunion") \
    X(RO, "Romania") \
    X(RU, "Russian Federation") \
    X(RW, "Rwanda") \
    X(BL, "Saint Barthelemy") \
    X(SH, "Saint Helena, Ascension and Tristan da Cunha") \
    X(KN, "Saint Kitts and Nevis") \
    X(LC, "Saint Lucia") \
    X(MF, "Saint Martin") \
    X(PM, "Saint Pierre and Miquelon") \
    X(VC, "Saint Vincent and the Grenadines") \
    X(WS, "Samoa") \
    X(SM, "San Marino") \
    X(ST, "Sao Tome and Principe") \
    X(SA, "Saudi Arabia") \
    X(SN, "Senegal") \
    X(RS, "Serbia") \
    X(SC, "Seychelles") \
    X(SL, "Sierra Leone") \
    X(SG, "Singapore") \
    X(SX, "Sint Maarten") \
    X(SK, "Slovakia") \
    X(SI, "Slovenia") \
    X(SB, "Solomon Islands") \
    X(SO, "Somalia") \
    X(ZA, "South Africa") \
    X(GS, "South Georgia and the South Sandwich Islands") \
    X(KR, "South Korea") \
    X(SS, "South Sudan") \
    X(ES, "Spain") \
    X(LK, "Sri Lanka") \
    X(PS, "State of Palestine") \
    X(SD, "Sudan") \
    X(SR, "Suriname") \
    X(SJ, "Svalbard and Jan Mayen") \
    X(SE, "Sweden") \
    X(CH, "Switzerland") \
    X(SY, "Syria") \
    X(TW, "Taiwan") \
    X(TJ, "Tajikistan") \
    X(TZ, "Tanzania") \
    X(TH, "Thailand") \
    X(CD, "The Democratic Republic of the Congo") \
    X(TL, "Timor-Leste") \
    X(TG, "Togo") \
    X(TK, "Tokelau") \
    X(TO, "Tonga") \
    X(TT, "Trinidad and Tobago") \
    X(TN, "Tunisia") \
    X(TR, "Turkiye") \
    X(TM, "Turkmenistan") \
    X(TC, "Turks and Caicos Islands") \
    X(TV, "Tuvalu") \
    X(VI, "U.S. Virgin Islands") \
    X(UG, "Uganda") \
    X(UA, "Ukraine") \
    X(AE, "United Arab Emirates") \
    X(GB, "United Kingdom") \
    X(US, "United States") \
    X(UM, "United States Minor Outlying Islands") \
    X(UY, "Uruguay") \
    X(UZ, "Uzbekistan") \
    X(VU, "Vanuatu") \
    X(VE, "Venezuela") \
    X(VN, "Vietnam") \
    X(WF, "Wallis and Futuna") \
    X(EH, "Western Sahara") \
    X(YE, "Yemen") \
    X(ZM, "Zambia") \
    X(ZW, "Zimbabwe")
// clang-format on
